#include "schedulewindow.h"

#include "celledit.h"
#include "displaytext.h"
#include "headeredit.h"
#include "messages.h"
#include "scheduleprintout.h"
#include "textmeasure.h"
#include "rates.h"
#include "twips.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QWheelEvent>

#include <algorithm>
#include <map>

namespace quillet {

namespace {

using namespace ScheduleLayout;

QString arrayName(QStringView name, int index)
{
    return QStringLiteral("%1(%2)").arg(name).arg(index);
}

QFont windowFont(const QString &family, qreal pointSize)
{
    QFont font(family);
    font.setPointSizeF(pointSize);
    return font;
}

std::size_t indexOf(GridColumn field)
{
    return static_cast<std::size_t>(field);
}

// A caption without its colon names the field it labels.
QString fieldName(const QString &caption)
{
    return caption.endsWith(u':') ? caption.chopped(1) : caption;
}

} // namespace

ScheduleWindow::ScheduleWindow(Session &session, ListKind list, const WindowSpec &layout,
                               QWidget *parent)
    : QDialog(parent), m_session(session), m_list(list), m_layout(layout)
{
    setObjectName(layout.name.toString());
    setWindowTitle(layout.caption.toString());
    setModal(true);
    setFont(windowFont(QStringLiteral("MS Sans Serif"), 9.75));
    setFixedSize(pixelRect(0, 0, layout.clientWidth, layout.clientHeight).size());
    buildHeader();
    buildButtons();
    buildTable();
    buildScrollBar();
    addKeys();
    setTabOrder();
}

ScheduleWindow::~ScheduleWindow() = default;

QRect ScheduleWindow::pixelRect(int left, int top, int width, int height) const
{
    return twipsRect(left, top, width, height, logicalDpiX());
}

HeaderField *ScheduleWindow::field(GridColumn field) const
{
    return m_fields.at(indexOf(field));
}

void ScheduleWindow::buildHeader()
{
    for (const FieldSpec &layout : m_layout.fields) {
        auto *caption = new QLabel(layout.caption.toString(), this);
        caption->setObjectName(layout.labelName.toString());
        caption->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        caption->setGeometry(
            pixelRect(LabelLeft, layout.labelTop, LabelWidth,
                      layout.field == GridColumn::Desc ? DescLabelHeight : LabelHeight));
        auto *box = new HeaderField(layout.field, this);
        box->setObjectName(layout.name.toString());
        box->setGeometry(pixelRect(FieldLeft, layout.top, FieldWidth, FieldHeight));
        box->installEventFilter(this);
        caption->setBuddy(box);
        m_fields.at(indexOf(layout.field)) = box;
        m_captions.at(indexOf(layout.field)) = caption;
    }
    // A loan's total interest is calculated, never typed in.
    if (m_list == ListKind::Loans)
        field(GridColumn::FutureValue)->setEnabled(false);
}

void ScheduleWindow::buildButtons()
{
    const QFont buttonFont = windowFont(QStringLiteral("MS Sans Serif"), ButtonPointSize);
    const auto makeButton = [&](const QString &caption, int top, QStringView toolTip) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(caption);
        button->setFont(buttonFont);
        button->setToolTip(toolTip.toString());
        button->setGeometry(pixelRect(ButtonLeft, top, ButtonWidth, ButtonHeight));
        // Enter in a field ends the edit; it never presses a button.
        button->setAutoDefault(false);
        return button;
    };
    Print = makeButton(QStringLiteral("Print"), PrintTop, m_layout.printToolTip);
    Exit = makeButton(QStringLiteral("Exit"), ExitTop, ExitToolTip);
    connect(Print, &QPushButton::clicked, this, &ScheduleWindow::Print_Click);
    connect(Exit, &QPushButton::clicked, this, &ScheduleWindow::Exit_Click);
}

void ScheduleWindow::addKeys()
{
    // Ctrl+P prints as the Print button does, named in its tool tip.
    const QKeySequence printKey(Qt::CTRL | Qt::Key_P);
    Print->setToolTip(QStringLiteral("%1 (%2)").arg(Print->toolTip(),
                                                    printKey.toString(QKeySequence::NativeText)));
    connect(new QShortcut(printKey, this), &QShortcut::activated, this, [this] {
        // As a click: the button takes the focus, so a field being edited is
        // left, and saved, first.
        Print->setFocus(Qt::ShortcutFocusReason);
        Print->click();
    });
    // Escape (outside an edit) closes as Exit does: keyPressEvent.
    Exit->setToolTip(QStringLiteral("%1 (%2)").arg(
        Exit->toolTip(), QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText)));
    // Page Up, Page Down, Home and End move through the table; in a field,
    // Home and End stay with the text.
    const std::array<std::pair<Qt::Key, QAbstractSlider::SliderAction>, 4> moves = {{
        {Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
        {Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd},
        {Qt::Key_Home, QAbstractSlider::SliderToMinimum},
        {Qt::Key_End, QAbstractSlider::SliderToMaximum},
    }};
    for (const auto &[key, action] : moves) {
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this,
                [this, action = action] {
                    if (VScroll1->isHidden())
                        return;
                    endEdit();
                    VScroll1->triggerAction(action);
                });
    }
}

void ScheduleWindow::buildTable()
{
    // The rule is 3 pixels thick whatever the resolution, centred on its line.
    const QRect span = pixelRect(LineLeft, LineTop, LineRight - LineLeft, 0);
    Line1 = new QWidget(this);
    Line1->setObjectName(QStringLiteral("Line1"));
    Line1->setGeometry(span.left(), span.top() - LineThicknessPixels / 2, span.width(),
                       LineThicknessPixels);
    Line1->setAutoFillBackground(true);
    QPalette ink = Line1->palette();
    ink.setColor(QPalette::Window, ink.color(QPalette::WindowText));
    Line1->setPalette(ink);

    const QFont fixedPitch = windowFont(QStringLiteral("Courier"), 9.75);
    for (const ColumnSpec &layout : m_layout.columns) {
        auto *heading = new QLabel(layout.heading.toString(), this);
        heading->setObjectName(layout.headingName.toString());
        heading->setAlignment(layout.headingAlignment | Qt::AlignTop);
        heading->setWordWrap(m_layout.headingsWrap);
        heading->setGeometry(pixelRect(layout.headingLeft, m_layout.headingTop, layout.headingWidth,
                                       m_layout.headingHeight));
        heading->installEventFilter(this);
        m_headings.push_back(heading);

        CellColumn cells{};
        for (int row = 0; row < RowCount; ++row) {
            auto *cell = new ScheduleCell(this);
            cell->setObjectName(arrayName(layout.name, row));
            cell->setAlignment(layout.alignment | Qt::AlignTop);
            if (layout.fixedPitch)
                cell->setFont(fixedPitch);
            cell->setGeometry(
                pixelRect(layout.left, layout.firstTop + RowPitch * row, layout.width, RowHeight));
            cell->setAccessibleName(QStringLiteral("%1, row %2").arg(layout.heading).arg(row + 1));
            cell->installEventFilter(this);
            cells[std::size_t(row)] = cell;
        }
        m_cells.push_back(cells);
    }
}

void ScheduleWindow::buildScrollBar()
{
    VScroll1 = new QScrollBar(Qt::Vertical, this);
    VScroll1->setObjectName(QStringLiteral("VScroll1"));
    VScroll1->setGeometry(
        pixelRect(m_layout.scrollBarLeft, ScrollBarTop, ScrollBarWidth, ScrollBarHeight));
    VScroll1->setFocusPolicy(Qt::StrongFocus);
    VScroll1->setRange(1, 1);
    VScroll1->setValue(1);
    VScroll1->hide();
    VScroll1->installEventFilter(this);
    connect(VScroll1, &QScrollBar::valueChanged, this, &ScheduleWindow::VScroll1_Change);
}

void ScheduleWindow::setTabOrder()
{
    std::map<int, QWidget *> byTabIndex;
    for (const FieldSpec &layout : m_layout.fields)
        byTabIndex[layout.tabIndex] = field(layout.field);
    byTabIndex[m_layout.printTabIndex] = Print;
    byTabIndex[m_layout.printTabIndex + 1] = VScroll1;
    byTabIndex[m_layout.printTabIndex + 2] = Exit;
    QWidget *previous = nullptr;
    for (const auto &[tabIndex, widget] : byTabIndex) {
        if (previous)
            QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

void ScheduleWindow::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    if (readShownRecord()) {
        Form_Activate();
        return;
    }
    // Nothing to show: an empty header and table.
    for (HeaderField *box : m_fields) {
        box->setText(QString());
        box->setDataChanged(false);
    }
    VScroll1->hide();
    for (int row = 0; row < RowCount; ++row)
        clearRow(row);
}

bool ScheduleWindow::readShownRecord()
{
    const Status status = m_session.list(m_list).file.read(m_record, m_session.WorkingRecord);
    if (!status.ok())
        reportProblem(status.message());
    return status.ok();
}

void ScheduleWindow::Form_Activate()
{
    displayHeader();
    const PeriodCountOutcome outcome =
        PeriodCountFor(field(GridColumn::Years)->text(), field(GridColumn::PerYear)->text());
    showPeriodCount(outcome);
    using Status = PeriodCountOutcome::Status;
    if (outcome.status == Status::TooMany || outcome.status == Status::NotANumber)
        return;
    if (m_session.PeriodCount > 0) {
        m_session.FirstPeriod = 1;
        DispAmort();
    }
    if (!VScroll1->isHidden())
        VScroll1->setFocus();
}

void ScheduleWindow::showPeriodCount(const PeriodCountOutcome &outcome)
{
    using Status = PeriodCountOutcome::Status;
    switch (outcome.status) {
    case Status::YearsEmpty:
        // The count of the previous display stays.
        return;
    case Status::TooMany:
    case Status::NotANumber:
        // No table rather than one of another scenario.
        VScroll1->hide();
        for (int row = 0; row < RowCount; ++row)
            clearRow(row);
        reportProblem(tooManyPeriodsMessage(outcome.periods, false));
        return;
    case Status::Counted:
        break;
    }
    m_session.PeriodCount = outcome.count;
    if (outcome.count < 13) {
        VScroll1->hide();
        return;
    }
    // The value is kept; lowering the maximum below it moves it, and the
    // table with it.
    VScroll1->setRange(1, outcome.count - 11);
    VScroll1->setPageStep(12);
    VScroll1->setSingleStep(1);
    VScroll1->show();
}

void ScheduleWindow::DispAmort()
{
    const std::optional<double> perYear = schedulePerYear(field(GridColumn::PerYear)->text());
    const ScheduleStart start =
        scheduleStart(m_session.WorkingRecord, m_list == ListKind::Investments, perYear.value_or(1),
                      m_session.StateFlags, m_solved);
    const int count = m_session.PeriodCount;
    const int shown = MinOf(count, RowCount);
    if (shown > 0)
        fillRows(start, m_session.FirstPeriod, shown);
    for (int row = std::max(count, 0); row < RowCount; ++row)
        clearRow(row);
}

void ScheduleWindow::VScroll1_Change(int value)
{
    m_session.FirstPeriod = static_cast<qint16>(value);
    DispAmort();
}

void ScheduleWindow::Exit_Click()
{
    hide();
}

void ScheduleWindow::Print_Click()
{
    if (readShownRecord()) {
        const bool investments = m_list == ListKind::Investments;
        SchedulePrintJob job;
        job.investments = investments;
        // The header lines in printed order: the payment before the payments
        // per year in both windows.
        static constexpr std::array<GridColumn, 7> Printed = {
            GridColumn::Desc,       GridColumn::InitialAmount, GridColumn::Yield,
            GridColumn::Years,      GridColumn::Payment,       GridColumn::PerYear,
            GridColumn::FutureValue};
        for (std::size_t k = 0; k < Printed.size(); ++k) {
            const HeaderField *box = field(Printed[k]);
            job.header[k] = {m_captions.at(indexOf(Printed[k]))->text(), box->text(),
                             box->isBold()};
        }
        for (const QLabel *heading : m_headings)
            job.headings << heading->text();
        job.start = scheduleStart(m_session.WorkingRecord, investments,
                                  schedulePerYear(field(GridColumn::PerYear)->text()).value_or(1),
                                  m_session.StateFlags, m_solved);
        job.periodCount = m_session.PeriodCount;
        // Measured in this window's font, as the window shows the texts.
        const TextMeasure measure(font(), logicalDpiX());
        runPrintout(this, m_printSeams, windowTitle(),
                    pdfFileName(trimmedDesc(m_session.WorkingRecord), windowTitle()),
                    std::max(job.periodCount, 0),
                    [&](PrintSurface &printer, const PrintProgress &progress) {
                        return PrintAmort(printer, measure, job, progress);
                    });
    }
    if (!VScroll1->isHidden())
        VScroll1->setFocus();
}

void ScheduleWindow::showHeader()
{
    const ScheduleHeader header = scheduleHeader(
        m_session.WorkingRecord, m_list == ListKind::Investments, m_session.StateFlags, m_solved);
    field(GridColumn::Desc)->setText(header.desc);
    const std::array<std::pair<GridColumn, Field>, 5> values = {{
        {GridColumn::InitialAmount, Field::InitialAmount},
        {GridColumn::Yield, Field::IRate},
        {GridColumn::Years, Field::Years},
        {GridColumn::Payment, Field::Payment},
        {GridColumn::FutureValue, Field::FutureValue},
    }};
    for (const auto &[column, engineField] : values) {
        const FieldDisplay &shown = header.value(engineField);
        field(column)->setText(shown.text);
        field(column)->setBold(shown.computed);
    }
    field(GridColumn::PerYear)->setText(header.perYear);
    // What the program shows is no change of the user's.
    for (HeaderField *box : m_fields) {
        box->setDataChanged(false);
        updateAccessibleName(box);
    }
}

void ScheduleWindow::setRowTexts(int row, const std::vector<QString> &texts)
{
    for (std::size_t k = 0; k < m_cells.size() && k < texts.size(); ++k)
        m_cells[k][std::size_t(row)]->setCellText(texts[k]);
}

void ScheduleWindow::clearRow(int row)
{
    for (const CellColumn &cells : m_cells)
        cells[std::size_t(row)]->setCellText(QString());
}

void ScheduleWindow::updateAccessibleName(HeaderField *box)
{
    QString name = fieldName(m_captions.at(indexOf(box->field()))->text());
    if (box->isBold())
        name += box->text().isEmpty() ? QStringLiteral(", calculated, no value")
                                      : QStringLiteral(", calculated");
    box->setAccessibleName(name);
}

bool ScheduleWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == VScroll1) {
        // Scrolling ends an edit first, as leaving the field does.
        if (event->type() == QEvent::Wheel)
            endEdit();
        return QDialog::eventFilter(watched, event);
    }
    if (event->type() == QEvent::Wheel && !qobject_cast<HeaderField *>(watched)) {
        // The wheel over the table's figures and headings pages the table.
        if (VScroll1->isHidden())
            return false;
        endEdit();
        QApplication::sendEvent(VScroll1, event);
        return true;
    }
    auto *box = qobject_cast<HeaderField *>(watched);
    if (!box)
        return QDialog::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonRelease: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::LeftButton &&
            box->rect().contains(mouse->position().toPoint()) && !box->hasEditLook())
            field_Click(box);
        break;
    }
    case QEvent::FocusIn: {
        // Reaching a field with the keyboard starts an edit as a click does.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if ((reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) &&
            !box->hasEditLook())
            field_Click(box);
        break;
    }
    case QEvent::KeyPress:
        return field_KeyPress(box, static_cast<QKeyEvent *>(event));
    case QEvent::FocusOut: {
        // Another window or a menu taking the focus does not leave the field.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            field_LostFocus(box);
        break;
    }
    default:
        break;
    }
    return false;
}

void ScheduleWindow::field_Click(HeaderField *box)
{
    if (!box->isEnabled())
        return;
    m_session.StateFlags |= EditingFlag;
    box->setEditLook(true);
    m_editing = box;
    const QString editing = headerEditingText(box->field(), m_session.WorkingRecord, box->text());
    box->setText(editing);
    box->setDataChanged(false);
    // Digits typed into a rate land before its sign.
    if (editing.endsWith(u'%'))
        box->setCursorPosition(int(editing.size()) - 1);
    if (!box->hasFocus())
        box->setFocus(Qt::OtherFocusReason);
}

bool ScheduleWindow::field_KeyPress(HeaderField *box, const QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        // Outside an edit, Escape closes the window.
        if (!box->hasEditLook() && !box->DataChanged()) {
            Exit_Click();
            return true;
        }
        // What was typed is dropped.
        box->setDataChanged(false);
        [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!VScroll1->isHidden()) {
            VScroll1->setFocus();
            // Without an active window no focus event came: leave it here.
            if (box->hasEditLook() || box->DataChanged())
                field_LostFocus(box);
        } else {
            field_LostFocus(box);
            box->setFocus();
        }
        return true;
    default:
        return false;
    }
}

void ScheduleWindow::field_LostFocus(HeaderField *box)
{
    if (box->DataChanged())
        saveField(box);
    else
        displayHeader();
    m_session.StateFlags &= static_cast<quint16>(~EditingFlag);
    box->setEditLook(false);
    if (m_editing == box)
        m_editing = nullptr;
}

bool ScheduleWindow::saveField(HeaderField *box)
{
    const GridColumn column = box->field();
    const QString text = box->text();
    ScenarioRecord after = m_session.WorkingRecord;
    switch (storeHeaderText(column, text, after)) {
    case HeaderStore::Stored:
        break;
    case HeaderStore::Empty:
        // A quantity is made blank only in the main window: the field shows
        // its value again.
        displayHeader();
        return false;
    case HeaderStore::NotANumber:
        showMessage(this, notANumberMessage(text));
        displayHeader();
        return false;
    case HeaderStore::PerYearTooLarge:
        showMessage(this, perYearTooLargeMessage(text));
        displayHeader();
        return false;
    case HeaderStore::BlankMarker:
        showMessage(this, blankMarkerMessage(text));
        displayHeader();
        return false;
    }
    if (column != GridColumn::Desc) {
        const ScheduleHeader header =
            scheduleHeader(after, m_list == ListKind::Investments, m_session.StateFlags, m_solved);
        const PeriodCountOutcome outcome =
            PeriodCountFor(header.value(Field::Years).text, header.perYear);
        using Status = PeriodCountOutcome::Status;
        if (outcome.status == Status::TooMany || outcome.status == Status::NotANumber) {
            showMessage(this, tooManyPeriodsMessage(outcome.periods, true));
            displayHeader();
            return false;
        }
    }
    if (const Status status = m_session.list(m_list).file.write(m_record, after); !status.ok()) {
        reportProblem(status.message());
        displayHeader();
        return false;
    }
    m_session.WorkingRecord = after;
    if (column == GridColumn::Desc)
        displayHeader();
    else
        Form_Activate();
    return true;
}

void ScheduleWindow::endEdit()
{
    // The window's own focus field, also while another window is active.
    auto *box = qobject_cast<HeaderField *>(focusWidget());
    if (!box || (!box->hasEditLook() && !box->DataChanged()))
        return;
    if (!VScroll1->isHidden() && isActiveWindow())
        VScroll1->setFocus();
    // Without an active window no focus event came: the field is left here.
    if (box->hasEditLook() || box->DataChanged())
        field_LostFocus(box);
}

void ScheduleWindow::wheelEvent(QWheelEvent *event)
{
    // The wheel over the table pages it as over the scroll bar.
    const QRect table =
        pixelRect(0, LineTop, m_layout.clientWidth, m_layout.clientHeight - LineTop);
    if (!VScroll1->isHidden() && table.contains(event->position().toPoint())) {
        endEdit();
        QApplication::sendEvent(VScroll1, event);
        return;
    }
    QDialog::wheelEvent(event);
}

void ScheduleWindow::keyPressEvent(QKeyEvent *event)
{
    // Escape outside an edit closes the window as Exit does; in a field being
    // edited it only drops what was typed.
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        Exit_Click();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ScheduleWindow::reject()
{
    // Closed from its title bar: the field being edited is left, and saved.
    endEdit();
    QDialog::reject();
}

void ScheduleWindow::reportProblem(const QString &message)
{
    showMessage(this, message, QMessageBox::Warning);
}

} // namespace quillet
