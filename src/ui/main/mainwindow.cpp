#include "mainwindow.h"

#include "buttonpictures.h"
#include "celledit.h"
#include "displaytext.h"
#include "listprintout.h"
#include "messages.h"
#include "rates.h"
#include "twips.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>
#include <QWheelEvent>

#include <algorithm>
#include <map>

namespace quillet {

namespace {

using namespace MainLayout;

const QColor InvestmentsColour(192, 255, 192);
const QColor LoansColour(255, 192, 192);
const QColor HelpBoxColour(255, 255, 192);

const QString InvestmentsName = QStringLiteral("Investments");
const QString LoansName = QStringLiteral("Loans");

QColor systemColour(QPalette::ColorRole role)
{
    return QApplication::palette().color(role);
}

QColor buttonFace()
{
    return systemColour(QPalette::Button);
}

// The colour of a scroll bar's trough, which the header cells wear.
QColor scrollBarColour()
{
    return buttonFace().darker(112);
}

QString arrayName(QStringView name, int index)
{
    return QStringLiteral("%1(%2)").arg(name).arg(index);
}

constexpr std::array<GridColumn, 5> ValueColumns = {GridColumn::InitialAmount, GridColumn::Yield,
                                                    GridColumn::Years, GridColumn::Payment,
                                                    GridColumn::FutureValue};

void setButtonColour(QPushButton *button, const QColor &colour)
{
    QPalette colours = button->palette();
    colours.setColor(QPalette::Button, colour);
    button->setPalette(colours);
    // A solid face: the style's gradient would wash the list colour out.
    button->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; border: 1px solid %2; "
                       "border-radius: 3px; }"
                       "QPushButton:pressed { background-color: %3; }"
                       "QPushButton:focus { border: 2px solid %4; }")
            .arg(colour.name(), colours.color(QPalette::Dark).name(), colour.darker(115).name(),
                 colours.color(QPalette::Highlight).name()));
}

// The key of each command, also named in the command's tool tip.
QKeySequence commandKey(Command command)
{
    switch (command) {
    case Command::AddNew:
        return QKeySequence(Qt::CTRL | Qt::Key_N);
    case Command::Copy:
        return QKeySequence(Qt::CTRL | Qt::Key_D);
    case Command::Delete:
        return QKeySequence(Qt::Key_Delete);
    case Command::Undo:
        return QKeySequence(QKeySequence::Undo);
    case Command::MoveUp:
        return QKeySequence(Qt::ALT | Qt::Key_Up);
    case Command::MoveDown:
        return QKeySequence(Qt::ALT | Qt::Key_Down);
    case Command::Amort:
        return QKeySequence(Qt::CTRL | Qt::Key_M);
    case Command::Print:
        return QKeySequence(Qt::CTRL | Qt::Key_P);
    case Command::cmdExit:
        return QKeySequence(Qt::CTRL | Qt::Key_Q);
    case Command::Command2:
        break;
    }
    return {};
}

// Sets a bit of the session's state flags for as long as it lives.
class StateFlagScope
{
public:
    StateFlagScope(Session &session, StateFlag flag) : m_session(session), m_flag(flag)
    {
        m_session.StateFlags |= m_flag;
    }
    ~StateFlagScope() { m_session.StateFlags &= static_cast<quint16>(~m_flag); }
    Q_DISABLE_COPY_MOVE(StateFlagScope)

private:
    Session &m_session;
    StateFlag m_flag;
};

} // namespace

MainWindow::MainWindow(Session &session, QWidget *parent)
    : QWidget(parent), m_session(session), Desc(m_columns[0]), InitialAmount(m_columns[1]),
      Yield(m_columns[2]), Years(m_columns[3]), Payment(m_columns[4]), PerYear(m_columns[5]),
      FutureValue(m_columns[6])
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Fennrow"));
    setWindowIcon(quilletIcon());
    QFont windowFont(QStringLiteral("Arial"));
    windowFont.setPointSizeF(9);
    setFont(windowFont);
    m_measure = std::make_unique<TextMeasure>(windowFont, logicalDpiX());
    buildLayout();
}

MainWindow::~MainWindow() = default;

const MainWindow::CellColumn &MainWindow::cells(GridColumn column) const
{
    return m_columns.at(static_cast<std::size_t>(column));
}

QRect MainWindow::pixelRect(int left, int top, int width, int height) const
{
    return twipsRect(left, top, width, height, logicalDpiX());
}

void MainWindow::buildLayout()
{
    setFixedSize(pixelRect(0, 0, ClientWidth, ClientHeight).size());
    buildCommandBar();
    buildListButtons();
    buildGrid();
    buildScrollBarAndHelpBox();
    addPagingKeys();
    setTabOrder();
}

void MainWindow::buildCommandBar()
{
    QFont barFont(QStringLiteral("Arial"));
    barFont.setPointSizeF(8.25);
    for (std::size_t k = 0; k < Commands.size(); ++k) {
        const CommandSpec &layout = Commands[k];
        auto *button = new QToolButton(this);
        button->setObjectName(layout.name.toString());
        button->setText(layout.caption.toString());
        button->setToolTip(layout.toolTip.toString());
        button->setFont(barFont);
        button->setIcon(commandIcon(layout));
        button->setIconSize(layout.picture);
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        // Clicking a command takes the focus, so a cell being edited is left,
        // and saved, before the command runs.
        button->setFocusPolicy(Qt::StrongFocus);
        button->setGeometry(pixelRect(layout.left, 0, CommandWidth, CommandHeight));
        m_commands[k] = button;
    }
    AddNew = m_commands[0];
    Copy = m_commands[1];
    Delete = m_commands[2];
    Undo = m_commands[3];
    MoveUp = m_commands[4];
    MoveDown = m_commands[5];
    Amort = m_commands[6];
    Print = m_commands[7];
    cmdExit = m_commands[8];
    Command2 = m_commands[9];
    // cmdExit lies on Command2, in the same rectangle, and takes every click.
    cmdExit->raise();

    connect(AddNew, &QToolButton::clicked, this, &MainWindow::AddNew_Click);
    connect(Copy, &QToolButton::clicked, this, &MainWindow::Copy_Click);
    connect(Delete, &QToolButton::clicked, this, &MainWindow::Delete_Click);
    connect(Undo, &QToolButton::clicked, this, &MainWindow::Undo_Click);
    connect(MoveUp, &QToolButton::clicked, this, &MainWindow::MoveUp_Click);
    connect(MoveDown, &QToolButton::clicked, this, &MainWindow::MoveDown_Click);
    connect(cmdExit, &QToolButton::clicked, this, &MainWindow::cmdExit_Click);
    connect(Amort, &QToolButton::clicked, this, &MainWindow::Amort_Click);
    connect(Print, &QToolButton::clicked, this, &MainWindow::Print_Click);
    for (std::size_t k = 0; k < Commands.size(); ++k)
        addCommandKey(m_commands[k], commandKey(Commands[k].command));
}

void MainWindow::addCommandKey(QAbstractButton *button, const QKeySequence &key)
{
    if (key.isEmpty())
        return;
    button->setToolTip(
        QStringLiteral("%1 (%2)").arg(button->toolTip(), key.toString(QKeySequence::NativeText)));
    auto *shortcut = new QShortcut(key, this);
    connect(shortcut, &QShortcut::activated, this, [this, button] { pressByKey(button); });
}

void MainWindow::pressByKey(QAbstractButton *button)
{
    if (!button->isEnabled() || !button->isVisible())
        return;
    // In a cell, Delete deletes text, never the selected scenario.
    if (button == Delete && qobject_cast<GridCell *>(QApplication::focusWidget()))
        return;
    // As a click: the command takes the focus, so a cell being edited is
    // left, and saved, before the command runs.
    button->setFocus(Qt::ShortcutFocusReason);
    button->click();
}

void MainWindow::addPagingKeys()
{
    const auto page = [this](QAbstractSlider::SliderAction action) {
        if (!VScroll1->isHidden())
            VScroll1->triggerAction(action);
    };
    connect(new QShortcut(QKeySequence(Qt::Key_PageUp), this), &QShortcut::activated, this,
            [page] { page(QAbstractSlider::SliderPageStepSub); });
    connect(new QShortcut(QKeySequence(Qt::Key_PageDown), this), &QShortcut::activated, this,
            [page] { page(QAbstractSlider::SliderPageStepAdd); });
}

void MainWindow::buildListButtons()
{
    const auto makeButton = [this](const ListButtonSpec &layout) {
        auto *button = new QPushButton(layout.caption.toString(), this);
        button->setObjectName(layout.name.toString());
        button->setToolTip(layout.toolTip.toString());
        button->setGeometry(
            pixelRect(layout.left, ListButtonTop, ListButtonWidth, ListButtonHeight));
        setButtonColour(button, buttonFace());
        return button;
    };
    Investments = makeButton(InvestmentsButton);
    Loans = makeButton(LoansButton);
    connect(Investments, &QPushButton::clicked, this, &MainWindow::Investments_Click);
    connect(Loans, &QPushButton::clicked, this, &MainWindow::Loans_Click);
    addCommandKey(Investments, QKeySequence(Qt::CTRL | Qt::Key_1));
    addCommandKey(Loans, QKeySequence(Qt::CTRL | Qt::Key_2));
}

void MainWindow::buildGrid()
{
    QFont selFont(QStringLiteral("MS Serif"));
    selFont.setPointSizeF(8.25);
    QFont selHeaderFont(QStringLiteral("MS Sans Serif"));
    selHeaderFont.setPointSizeF(8.25);
    for (int index = 0; index <= RowCount; ++index) {
        auto *selector = new QPushButton(this);
        selector->setObjectName(arrayName(u"Sel", index));
        if (index == 0) {
            selector->setFont(selHeaderFont);
            selector->setGeometry(
                pixelRect(SelLeft, SelHeaderTop, SelHeaderWidth, SelHeaderHeight));
            selector->setEnabled(false);
        } else {
            selector->setFont(selFont);
            selector->setGeometry(pixelRect(SelLeft, rowTop(index), SelWidth, RowHeight));
            selector->setToolTip((index == 1 ? FirstSelToolTip : SelToolTip).toString());
            connect(selector, &QPushButton::clicked, this, [this, index] { Sel_Click(index); });
            selector->installEventFilter(this);
        }
        Sel[index] = selector;
    }

    for (const ColumnSpec &layout : Columns) {
        CellColumn &column = m_columns.at(static_cast<std::size_t>(layout.column));
        for (int index = 0; index <= RowCount; ++index) {
            auto *cell = new GridCell(layout.column, index, this);
            cell->setObjectName(arrayName(layout.name, index));
            if (index == 0) {
                cell->setGeometry(pixelRect(layout.left, HeaderTop, layout.width, HeaderHeight));
                cell->setText(layout.header.toString());
                cell->setAlignment(Qt::AlignCenter);
                cell->setReadOnly(true);
                cell->setColours(layout.column == GridColumn::Desc ? buttonFace()
                                                                   : scrollBarColour(),
                                 systemColour(QPalette::Text));
            } else {
                cell->setGeometry(pixelRect(layout.left, rowTop(index), layout.width, RowHeight));
                cell->setAlignment(layout.alignment | Qt::AlignVCenter);
                cell->setColours(systemColour(QPalette::Base), systemColour(QPalette::Text));
                cell->installEventFilter(this);
            }
            column[index] = cell;
        }
    }
}

void MainWindow::buildScrollBarAndHelpBox()
{
    VScroll1 = new QScrollBar(Qt::Vertical, this);
    VScroll1->setObjectName(QStringLiteral("VScroll1"));
    VScroll1->setGeometry(pixelRect(VScrollLeft, VScrollTop, VScrollWidth, VScrollHeight));
    VScroll1->setFocusPolicy(Qt::StrongFocus);
    // Starting on the first record means the first range set raises no change.
    VScroll1->setRange(1, 1);
    VScroll1->setValue(1);
    VScroll1->hide();
    connect(VScroll1, &QScrollBar::valueChanged, this, &MainWindow::VScroll1_Change);

    HelpBox = new QLabel(this);
    HelpBox->setObjectName(QStringLiteral("HelpBox"));
    HelpBox->setGeometry(pixelRect(HelpBoxLeft, HelpBoxTop, HelpBoxWidth, HelpBoxHeight));
    HelpBox->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    HelpBox->setWordWrap(true);
    HelpBox->setMargin(2);
    HelpBox->setAutoFillBackground(true);
    QPalette colours = HelpBox->palette();
    colours.setColor(QPalette::Window, HelpBoxColour);
    colours.setColor(QPalette::WindowText, systemColour(QPalette::Text));
    HelpBox->setPalette(colours);
}

void MainWindow::setTabOrder()
{
    std::map<int, QWidget *> byTabIndex;
    for (const ColumnSpec &layout : Columns) {
        const CellColumn &column = cells(layout.column);
        byTabIndex[layout.firstTabIndex] = column[0];
        for (int row = 1; row <= RowCount; ++row)
            byTabIndex[cellTabIndex(layout.column, row)] = column[row];
    }
    byTabIndex[VScrollTabIndex] = VScroll1;
    for (int index = 0; index <= RowCount; ++index)
        byTabIndex[FirstSelTabIndex + index] = Sel[index];
    byTabIndex[InvestmentsButton.tabIndex] = Investments;
    byTabIndex[LoansButton.tabIndex] = Loans;
    for (std::size_t k = 0; k < Commands.size(); ++k)
        byTabIndex[Commands[k].tabIndex] = m_commands[k];

    QWidget *previous = nullptr;
    for (const auto &[tabIndex, widget] : byTabIndex) {
        if (previous)
            QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

void MainWindow::Form_Load()
{
    // A list that cannot be written, or read, is explained once; the window
    // opens all the same, with the other list working as usual.
    const Status opened = m_session.openDataFiles(QDir::currentPath());
    m_session.StateFlags = 0;
    for (const ListKind list : {ListKind::Investments, ListKind::Loans}) {
        m_session.list(list).TopRow = 1;
        m_session.list(list).SelRow = 0;
    }
    m_session.InvMode = false;

    SwitchTo(InvestmentsName);
    if (m_session.list(ListKind::Investments).NumRecs() == 0) {
        SwitchTo(LoansName);
        if (m_session.list(ListKind::Loans).NumRecs() == 0)
            SwitchTo(InvestmentsName);
    }
    DispRows();
    showHelp(GeneralHelp());
    if (!opened.ok())
        reportProblem(opened.message());
}

void MainWindow::Form_Activate()
{
    doFocus();
}

void MainWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    Form_Activate();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // Closing the window leaves the cell being edited: its edit is saved as
    // when any other control takes the focus.
    endEdit();
    QWidget::closeEvent(event);
}

void MainWindow::SwitchTo(const QString &name)
{
    Session &session = m_session;
    if (name == InvestmentsName && !session.InvMode) {
        session.InvMode = true;
        session.CurList = ListKind::Investments;
        setButtonColour(Investments, InvestmentsColour);
        Yield[0]->setText(QStringLiteral("Yield"));
        FutureValue[0]->setText(QStringLiteral("Future Value"));
        setButtonColour(Loans, buttonFace());
    } else if (name != InvestmentsName && session.InvMode) {
        session.InvMode = false;
        session.CurList = ListKind::Loans;
        setButtonColour(Loans, LoansColour);
        Yield[0]->setText(QStringLiteral("Rate"));
        FutureValue[0]->setText(QStringLiteral("Total Interest"));
        setButtonColour(Investments, buttonFace());
    } else {
        return;
    }

    DoVerticalScroll();
    ClearAllRows();
    const QColor listColour = session.InvMode ? InvestmentsColour : LoansColour;
    for (const ColumnSpec &layout : Columns) {
        const CellColumn &column = cells(layout.column);
        column[0]->setColours(listColour, systemColour(QPalette::Text));
        const QString tip = FieldTip(layout.column, session.CurList);
        for (GridCell *cell : column) {
            cell->setFieldToolTip(tip);
            updateAccessibleName(cell);
        }
    }
}

void MainWindow::DoVerticalScroll()
{
    const ListState &list = m_session.current();
    const int records = list.NumRecs();
    if (records > RowCount) {
        // Each list keeps its own top row: a new range must not move it, and
        // the thumb shows where the list shown stands.
        const QSignalBlocker quiet(VScroll1);
        VScroll1->setRange(1, records - (RowCount - 1));
        VScroll1->setPageStep(RowCount);
        VScroll1->setValue(list.TopRow);
        VScroll1->show();
    } else {
        VScroll1->hide();
    }
}

void MainWindow::VScroll1_Change(int value)
{
    // What was typed belongs to the record under the cell now, before the
    // rows move.
    endEdit();
    m_session.current().TopRow = static_cast<qint16>(value);
    DispRows();
}

void MainWindow::wheelEvent(QWheelEvent *event)
{
    // The wheel anywhere over the grid turns the list as over its scroll bar.
    if (VScroll1->isHidden()) {
        event->ignore();
        return;
    }
    QWheelEvent turned(VScroll1->mapFromGlobal(event->globalPosition()), event->globalPosition(),
                       event->pixelDelta(), event->angleDelta(), event->buttons(),
                       event->modifiers(), event->phase(), event->inverted(), event->source());
    QCoreApplication::sendEvent(VScroll1, &turned);
    event->setAccepted(turned.isAccepted());
}

void MainWindow::DispRows()
{
    const ListState &list = m_session.current();
    if (list.NumRecs() >= 1) {
        StateFlagScope busy(m_session, BusyFlag);
        const int top = list.TopRow;
        for (int record = top; record <= list.NumRecs() && record < top + RowCount; ++record) {
            // The selector of the grid row, so that scrolled lists draw right.
            const int row = record - top + 1;
            Sel[row]->show();
            Sel[row]->setText(QString::number(record));
            if (!readRecord(record))
                break;
            DispRow(row);
        }
    }
    // A row below the last record shows nothing, so no selector number is
    // shown twice after a delete in a scrolled list.
    clearRowsAfterLastRecord();
    EnableButtons();
    doFocus();
}

void MainWindow::DispRow(int k)
{
    if (k < 1 || k > RowCount)
        return;
    StateFlagScope busy(m_session, BusyFlag);
    ScenarioRecord &record = m_session.WorkingRecord;
    const ListState &list = m_session.current();

    const QString desc = trimmedDesc(record);
    setDescText(record, desc);
    Desc[k]->setText(desc.isEmpty() ? QString() : Fit(desc, DescCellWidth, *m_measure));

    const bool selected = list.SelRow == list.TopRow + k - 1;
    const QColor background = systemColour(selected ? QPalette::Highlight : QPalette::Base);
    const QColor text = systemColour(selected ? QPalette::HighlightedText : QPalette::Text);
    for (const CellColumn &column : m_columns) {
        column[k]->setColours(background, text);
        column[k]->setReadOnly(false);
    }
    // The total interest of a loan is never typed in.
    FutureValue[k]->setReadOnly(!m_session.InvMode);

    for (const GridColumn column : ValueColumns) {
        const FieldDisplay shown =
            m_solved.fieldText(record, fieldOf(column), m_session.InvMode, m_session.StateFlags);
        GridCell *cell = cells(column)[k];
        cell->setText(shown.text);
        cell->setBold(shown.computed);
    }
    PerYear[k]->setText(record.PerYear == BlankPerYear ? QString()
                                                       : QString::number(record.PerYear));
    for (const CellColumn &column : m_columns)
        updateAccessibleName(column[k]);
}

void MainWindow::ClearRow(int k)
{
    if (k < 1 || k > RowCount)
        return;
    Sel[k]->setText(QString());
    Sel[k]->hide();
    for (const CellColumn &column : m_columns) {
        GridCell *cell = column[k];
        cell->setText(QString());
        cell->setBold(false);
        cell->setColours(buttonFace(), systemColour(QPalette::Text));
        // A row without a record has nothing to edit.
        cell->setReadOnly(true);
        updateAccessibleName(cell);
    }
}

void MainWindow::ClearAllRows()
{
    for (int k = 1; k <= RowCount; ++k)
        ClearRow(k);
}

void MainWindow::doFocus()
{
    if (!VScroll1->isHidden()) {
        VScroll1->setFocus();
        return;
    }
    QPushButton *listButton = m_session.InvMode ? Investments : Loans;
    if (!listButton->isHidden())
        listButton->setFocus();
}

void MainWindow::EnableButtons()
{
    const ListState &list = m_session.current();
    const bool selected = list.SelRow >= 1;
    for (QToolButton *button : {Copy, Delete, MoveUp, MoveDown, Amort})
        button->setEnabled(selected);
    Undo->setEnabled(list.undo.UndoCount() >= 1);
}

void MainWindow::Investments_Click()
{
    SwitchTo(InvestmentsName);
    DispRows();
}

void MainWindow::Loans_Click()
{
    SwitchTo(LoansName);
    DispRows();
}

void MainWindow::Sel_Click(int index)
{
    if (!handlesRow(index))
        return;
    ListState &list = m_session.current();
    const int n = list.TopRow + index - 1;
    bool deselect = false;
    if (list.SelRow > 0) {
        if (list.SelRow != n) {
            const int old = list.SelRow;
            list.SelRow = 0;
            if (readRecord(old))
                DispRow(old - list.TopRow + 1);
        } else {
            deselect = true;
        }
    }
    list.SelRow = static_cast<qint16>(n);
    const bool read = readRecord(n);
    if (deselect)
        list.SelRow = 0;
    if (read)
        DispRow(index);
    doFocus();
    EnableButtons();
}

void MainWindow::cmdExit_Click()
{
    // Everything is on disk already.
    close();
}

bool MainWindow::handlesRow(int k) const
{
    const ListState &list = m_session.current();
    // A row shows a record only up to the last one.
    return k >= 1 && k <= RowCount && list.TopRow + k - 1 <= list.NumRecs();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Wheel && watched != VScroll1) {
        // The wheel over any part of the grid turns the list; a cell being
        // edited is left first (VScroll1_Change).
        wheelEvent(static_cast<QWheelEvent *>(event));
        return true;
    }
    auto *cell = qobject_cast<GridCell *>(watched);
    if (!cell)
        return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonRelease: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        // A click inside the cell being edited only moves the cursor.
        if (mouse->button() == Qt::LeftButton &&
            cell->rect().contains(mouse->position().toPoint()) && !cell->hasEditLook())
            cell_Click(cell);
        break;
    }
    case QEvent::FocusIn: {
        // Reaching a cell with the keyboard starts an edit as a click does.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason)
            cell_Click(cell);
        break;
    }
    case QEvent::KeyPress:
        return cell_KeyPress(cell, static_cast<QKeyEvent *>(event));
    case QEvent::FocusOut: {
        // Another window or a menu taking the focus does not leave the cell.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            cell_LostFocus(cell);
        break;
    }

    default:
        break;
    }
    return false;
}

void MainWindow::cell_Click(GridCell *cell)
{
    const int k = cell->row();
    if (!handlesRow(k))
        return;
    ListState &list = m_session.current();
    showHelp(FieldHelp(cell->column(), m_session.CurList));
    if (cell->column() == GridColumn::FutureValue && !m_session.InvMode)
        return;

    m_session.StateFlags |= EditingFlag;
    // Editing a cell ends a row selection.
    if (list.SelRow > 0) {
        const int selected = list.SelRow;
        list.SelRow = 0;
        if (readRecord(selected))
            DispRow(selected - list.TopRow + 1);
        EnableButtons();
    }
    cell->setEditLook(true);
    m_editing = cell;
    const QString shown = cell->text();
    if (!readRecord(list.TopRow + k - 1))
        return;
    const EditingText editing = editingText(cell->column(), m_session.WorkingRecord, shown);
    cell->setText(editing.text);
    // Digits typed into a rate land before its percent sign.
    if (cell->column() == GridColumn::Yield && editing.text.endsWith(u'%'))
        cell->setCursorPosition(static_cast<int>(editing.text.size()) - 1);
    if (editing.clearChangedFlag)
        cell->setDataChanged(false);
}

bool MainWindow::cell_KeyPress(GridCell *cell, const QKeyEvent *event)
{
    if (!handlesRow(cell->row()))
        return false;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        doFocus();
        return true;
    case Qt::Key_Escape:
        // What was typed is dropped: the row is drawn again from the file.
        cell->setDataChanged(false);
        doFocus();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (cell != m_editing || event->modifiers() != Qt::NoModifier)
            break;
        moveEdit(cell, event->key() == Qt::Key_Up ? -1 : 1, 0);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (cell != m_editing || event->modifiers() != Qt::ControlModifier)
            break;
        moveEdit(cell, 0, event->key() == Qt::Key_Left ? -1 : 1);
        return true;
    default:
        break;
    }
    if (cell->column() == GridColumn::FutureValue && !m_session.InvMode &&
        !event->text().isEmpty()) {
        cell->setDataChanged(false);
        return true;
    }
    return false;
}

void MainWindow::cell_LostFocus(GridCell *cell)
{
    const int k = cell->row();
    if (!handlesRow(k))
        return;
    if (cell->column() == GridColumn::FutureValue && !m_session.InvMode) {
        showHelp(GeneralHelp());
        return;
    }
    // An edit ends once: a cell already left (say, when a scroll ended its
    // edit) has nothing of the user's in it any more.
    if (cell != m_editing)
        return;
    m_editing = nullptr;
    const int record = m_session.current().TopRow + k - 1;
    if (readRecord(record) && cell->DataChanged())
        saveCell(cell, record);
    DispRow(k);
    m_session.StateFlags &= static_cast<quint16>(~EditingFlag);
    cell->setEditLook(false);
    showHelp(GeneralHelp());
}

void MainWindow::saveCell(GridCell *cell, int record)
{
    const ScenarioRecord before = m_session.WorkingRecord;
    ScenarioRecord after = before;
    switch (storeCellText(cell->column(), cell->text(), after)) {
    case StoreOutcome::Stored:
        break;
    case StoreOutcome::PerYearOutOfRange:
        // The old value stays, but the edit still counts as a change.
        showMessage(this, perYearMessage());
        break;
    case StoreOutcome::NotANumber:
        // Refused: nothing is written and nothing is left to undo.
        showMessage(this, notANumberMessage(cell->text()));
        return;
    case StoreOutcome::BlankMarker:
        showMessage(this, blankMarkerMessage(cell->text()));
        return;
    }
    if (!writeRecord(record, after))
        return;
    m_session.WorkingRecord = after;
    m_session.PushUndo(before, static_cast<qint16>(record), 0);
    EnableButtons();
}

void MainWindow::AddNew_Click()
{
    if (!roomForOneMore())
        return;
    ScenarioRecord &record = m_session.WorkingRecord;
    record.makeBlank();
    writeRecord(m_session.current().NumRecs() + 1, record);
    DispRows();
}

void MainWindow::Copy_Click()
{
    // The working record as it stands: after a selector click it is the
    // selected scenario, after a redraw the last one drawn.
    if (m_session.current().SelRow == 0 || !roomForOneMore())
        return;
    writeRecord(m_session.current().NumRecs() + 1, m_session.WorkingRecord);
    DispRows();
}

void MainWindow::Delete_Click()
{
    if (m_session.current().SelRow == 0)
        return;
    if (const Status status = m_session.deleteSelected(); !status.ok())
        reportProblem(status.message());
    // DispRows also clears the rows left without a record.
    DispRows();
}

void MainWindow::clearRowsAfterLastRecord()
{
    const ListState &list = m_session.current();
    for (int k = std::max(1, list.NumRecs() - list.TopRow + 2); k <= RowCount; ++k)
        ClearRow(k);
}

void MainWindow::MoveUp_Click()
{
    const int s = m_session.current().SelRow;
    if (s <= 1)
        return;
    if (!swapRecords(s - 1, s))
        return;
    m_session.current().SelRow = static_cast<qint16>(s - 1);
    // Rows are drawn by record number, which matches the grid while the
    // list is not scrolled.
    DispRow(s);
    if (readRecord(s - 1))
        DispRow(s - 1);
}

void MainWindow::MoveDown_Click()
{
    const int s = m_session.current().SelRow;
    if (!(s > 0 && s < m_session.current().NumRecs()))
        return;
    if (!swapRecords(s + 1, s))
        return;
    m_session.current().SelRow = static_cast<qint16>(s + 1);
    DispRow(s);
    if (readRecord(s + 1))
        DispRow(s + 1);
}

bool MainWindow::swapRecords(int neighbour, int selected)
{
    const Status status = m_session.swapRecords(neighbour, selected);
    if (!status.ok())
        reportProblem(status.message());
    return status.ok();
}

void MainWindow::moveEdit(GridCell *cell, int rowStep, int columnStep)
{
    const ListState &list = m_session.current();
    const int record = list.TopRow + cell->row() - 1 + rowStep;
    const int column = static_cast<int>(cell->column()) + columnStep;
    if (record < 1 || record > list.NumRecs() || column < 0 || column >= GridColumnCount)
        return;
    // The total interest of a loan is never edited.
    if (static_cast<GridColumn>(column) == GridColumn::FutureValue && !m_session.InvMode)
        return;
    endEdit();
    // A row off screen is scrolled into view first.
    if (record < list.TopRow)
        VScroll1->setValue(record);
    else if (record > list.TopRow + RowCount - 1)
        VScroll1->setValue(record - RowCount + 1);
    const int row = record - list.TopRow + 1;
    if (row < 1 || row > RowCount)
        return;
    GridCell *next = cells(static_cast<GridColumn>(column))[row];
    next->setFocus(Qt::OtherFocusReason);
    cell_Click(next);
}

void MainWindow::endEdit()
{
    if (m_editing)
        cell_LostFocus(m_editing);
}

bool MainWindow::roomForOneMore()
{
    if (m_session.current().NumRecs() < ScenarioFile::MaxRecords)
        return true;
    reportProblem(QStringLiteral("This list already holds %1 scenarios, as many as a list can "
                                 "hold. Delete one before you add another.")
                      .arg(QLocale().toString(ScenarioFile::MaxRecords)));
    return false;
}

void MainWindow::Undo_Click()
{
    if (const Status status = m_session.PopUndo(); !status.ok())
        reportProblem(status.message());
    DispRows();
}

void MainWindow::Amort_Click()
{
    const ListState &list = m_session.current();
    const int selected = list.SelRow;
    if (selected == 0 || !m_scheduleOpener)
        return;
    m_scheduleOpener(m_session.CurList, selected);
    // The scenario may have been edited in the schedule window.
    if (readRecord(selected))
        DispRow(selected - list.TopRow + 1);
    // Coming back from the schedule window activates this one again.
    Form_Activate();
}

void MainWindow::showHelp(const QString &text)
{
    m_helpText = text;
    HelpBox->setText(helpBoxText(text));
}

void MainWindow::updateAccessibleName(GridCell *cell)
{
    const int row = cell->row();
    if (row == 0) {
        cell->setAccessibleName(cell->text());
        return;
    }
    const QString header = cells(cell->column())[0]->text();
    QString name = QStringLiteral("%1, row %2").arg(header).arg(row);
    if (cell->isBold())
        name += cell->text().isEmpty() ? QStringLiteral(", calculated, no value")
                                       : QStringLiteral(", calculated");
    cell->setAccessibleName(name);
}

bool MainWindow::readRecord(int n)
{
    const Status status = m_session.readRecord(n);
    if (!status.ok())
        reportProblem(status.message());
    return status.ok();
}

bool MainWindow::writeRecord(int n, const ScenarioRecord &record)
{
    const Status status = m_session.current().file.write(n, record);
    if (!status.ok())
        reportProblem(status.message());
    return status.ok();
}

void MainWindow::reportProblem(const QString &message)
{
    showMessage(this, message, QMessageBox::Warning);
}

// Prints the list shown on the default printer, or offers a PDF without one.
void MainWindow::Print_Click()
{
    const bool investments = m_session.InvMode;
    const int count = m_session.current().NumRecs();
    if (count < 1) {
        showMessage(this, emptyListMessage(investments));
        return;
    }
    ListPrintJob job;
    job.investments = investments;
    job.headers = {Desc[0]->text(),       InitialAmount[0]->text(), Yield[0]->text(),
                   Years[0]->text(),      Payment[0]->text(),       PerYear[0]->text(),
                   FutureValue[0]->text()};
    job.count = count;
    job.readRecord = [this](int n) {
        return m_session.readRecord(n);
    };
    job.stateFlags = m_session.StateFlags;
    const QString title = listHeading(investments);
    runPrintout(this, m_printSeams, title, title + QStringLiteral(".pdf"), count,
                [&](PrintSurface &printer, const PrintProgress &progress) {
                    return printList(printer, *m_measure, job, m_session.WorkingRecord, progress);
                });
}

} // namespace quillet
