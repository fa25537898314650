// Starts either Quillet's main window over the lists of the current
// directory, or a bare window holding the same number and kinds of widgets,
// and quits as soon as the window is first shown on screen. bench/run-startup
// times whole runs of both, so the comparison includes everything a person
// waits for.

#include "fonts.h"
#include "mainwindow.h"
#include "session.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QWindow>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// As many widgets of each kind as the main window has.
std::unique_ptr<QWidget> bareWindow()
{
    auto window = std::make_unique<QWidget>();
    window->setFixedSize(753, 469);
    for (int k = 0; k < 10; ++k)
        (new QToolButton(window.get()))->setGeometry(69 * k, 0, 69, 40);
    for (int k = 0; k < 17; ++k)
        (new QPushButton(window.get()))->setGeometry(4, 80 + 18 * k, 17, 19);
    for (int k = 0; k < 105; ++k)
        (new QLineEdit(window.get()))->setGeometry(23 + 100 * (k % 7), 80 + 18 * (k / 7), 100, 19);
    (new QScrollBar(Qt::Vertical, window.get()))->setGeometry(732, 102, 17, 253);
    (new QLabel(window.get()))->setGeometry(4, 360, 745, 91);
    return window;
}

} // namespace

int main(int argc, char **argv)
{
    const bool bare = argc > 1 && std::strcmp(argv[1], "bare") == 0;
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    quillet::installFontSubstitutions();

    quillet::Session session;
    std::unique_ptr<QWidget> window;
    if (bare) {
        window = bareWindow();
    } else {
        auto main = std::make_unique<quillet::MainWindow>(session);
        main->Form_Load();
        window = std::move(main);
    }
    window->show();
    // Done once the window system shows the window and it has been painted.
    while (!window->windowHandle()->isExposed())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::processEvents();
    return 0;
}
