#include "chart.h"

#include <QApplication>
#include <QCategoryAxis>
#include <QChart>
#include <QFileInfo>
#include <QFont>
#include <QGraphicsScene>
#include <QImage>
#include <QLegend>
#include <QLineSeries>
#include <QLocale>
#include <QPainter>
#include <QSaveFile>
#include <QSvgGenerator>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "reports.h"
#include "texttable.h"

namespace quillet::report {

namespace {

// Past this many periods the x axis counts years, not periods.
constexpr int MaxPeriodsOnAxis = 120;

struct Curve
{
    QString name;
    std::vector<double> values; // one per period
};

std::vector<Curve> curvesOf(ListKind list, const ScheduleData &data)
{
    if (list == ListKind::Investments) {
        Curve balance{QStringLiteral("Balance"), {}};
        Curve earnings{QStringLiteral("Cumulative Earnings"), {}};
        for (const InvestmentScheduleRow &row : data.investmentRows) {
            balance.values.push_back(row.balance);
            earnings.values.push_back(row.cumulativeEarnings);
        }
        return {balance, earnings};
    }
    Curve balance{QStringLiteral("Remaining Balance"), {}};
    Curve principal{QStringLiteral("Cumulative Principal"), {}};
    Curve interest{QStringLiteral("Cumulative Interest"), {}};
    for (const LoanScheduleRow &row : data.loanRows) {
        balance.values.push_back(row.balance);
        principal.values.push_back(row.cumulativePrincipal);
        interest.values.push_back(row.cumulativeInterest);
    }
    return {balance, principal, interest};
}

// The periods to plot: all of them when they fit, else the last period of
// each pixel column (and the first period), so that 32,767 periods draw as
// fast as 800.
std::vector<int> sampledIndexes(int count, int columns)
{
    std::vector<int> indexes;
    if (count <= columns) {
        for (int k = 0; k < count; ++k)
            indexes.push_back(k);
        return indexes;
    }
    indexes.push_back(0);
    for (int c = 0; c < columns; ++c) {
        const int last = static_cast<int>((static_cast<qint64>(c) + 1) * count / columns) - 1;
        if (last > indexes.back())
            indexes.push_back(last);
    }
    return indexes;
}

// A step of 1, 2, 2.5 or 5 times a power of ten that cuts the range into
// about six parts.
double niceStep(double range)
{
    const double raw = range / 6;
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 2.5, 5.0}) {
        if (raw <= factor * magnitude)
            return factor * magnitude;
    }
    return 10 * magnitude;
}

// The amount axis: a value axis would print the figures with a printf
// format; labels placed at chosen values show them in the locale's currency.
QCategoryAxis *amountAxis(double low, double high, double scale)
{
    auto *axis = new QCategoryAxis;
    axis->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    double step = niceStep(high - low);
    // A balance that ends a hair below zero (a solved payment's rounding)
    // does not earn the axis a whole step below zero.
    constexpr double slack = 1e-6;
    double first = std::floor(low / step + slack) * step;
    double last = std::ceil(high / step - slack) * step;
    if (!std::isfinite(step) || !(step > 0) || !std::isfinite(first) || !std::isfinite(last)) {
        first = low;
        last = high;
        step = high - low;
    }
    const int decimals = step >= 1 ? 0 : 2;
    const QLocale locale;
    axis->setStartValue(first);
    for (int k = 0;; ++k) {
        const double value = first + k * step;
        if (value > last + step / 2 || k > 50)
            break;
        // Zero is written from exactly zero, never as a rounded -0.
        axis->append(
            locale.toCurrencyString(std::abs(value) < step / 2 ? 0.0 : value, QString(), decimals),
            value);
    }
    axis->setRange(first, last);
    axis->setTitleText(
        scale == 1 ? QStringLiteral("Amount")
                   : QStringLiteral("Amount (\u00d7%1)").arg(locale.toString(scale, 'g', 1)));
    return axis;
}

QString chartTitle(ListKind list, const ScenarioRecord &record, int recordNumber)
{
    // Control characters of a description would break the picture's text.
    QString desc = withoutControls(trimmedDesc(record));
    if (!desc.isEmpty())
        return desc;
    return (list == ListKind::Investments ? QStringLiteral("Investment %1")
                                          : QStringLiteral("Loan %1"))
        .arg(recordNumber);
}

QChart *buildChart(ListKind list, const ScenarioRecord &record, int recordNumber,
                   const ScheduleData &data, QSize size)
{
    const int count = data.rowCount();
    const bool inYears = count > MaxPeriodsOnAxis;
    const std::vector<int> indexes = sampledIndexes(count, size.width());

    auto *chart = new QChart;
    chart->setTitle(chartTitle(list, record, recordNumber));
    QFont titleFont = chart->titleFont();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.4);
    titleFont.setBold(true);
    chart->setTitleFont(titleFont);
    chart->setAnimationOptions(QChart::NoAnimation);
    chart->legend()->setAlignment(Qt::AlignBottom);

    auto *xAxis = new QValueAxis;
    xAxis->setTitleText(inYears ? QStringLiteral("Years") : QStringLiteral("Period"));
    const double xFirst = inYears ? 1 / data.perYear : 1;
    const double xLast = inYears ? count / data.perYear : count;
    xAxis->setRange(inYears ? 0 : xFirst, xLast > xFirst ? xLast : xFirst + 1);
    // Round numbers at the ticks: 0, 5, 10 ... years; 1 to 12 periods each.
    if (!inYears && count <= 12)
        xAxis->setTickCount(std::max(2, count));
    else
        xAxis->applyNiceNumbers();
    xAxis->setLabelFormat(inYears && xLast < 10 ? QStringLiteral("%.1f") : QStringLiteral("%.0f"));
    chart->addAxis(xAxis, Qt::AlignBottom);

    // Amounts near the largest double overflow the chart's own arithmetic:
    // beyond 10^15 they are drawn in units of a power of ten, which the
    // axis title names.
    const std::vector<Curve> curves = curvesOf(list, data);
    double largest = 0;
    for (const Curve &curve : curves) {
        for (const int k : indexes) {
            const double value = curve.values[static_cast<std::size_t>(k)];
            if (std::isfinite(value))
                largest = std::max(largest, std::abs(value));
        }
    }
    const double scale = largest >= 1e15 ? std::pow(10.0, std::floor(std::log10(largest)) - 3) : 1;

    double low = 0;
    double high = 0;
    std::vector<QLineSeries *> lines;
    for (const Curve &curve : curves) {
        auto *series = new QLineSeries;
        series->setName(curve.name);
        QList<QPointF> points;
        points.reserve(static_cast<qsizetype>(indexes.size()));
        for (const int k : indexes) {
            const double value = curve.values[static_cast<std::size_t>(k)] / scale;
            if (!std::isfinite(value))
                continue;
            const double x = inYears ? (k + 1) / data.perYear : k + 1;
            points.append(QPointF(x, value));
            low = std::min(low, value);
            high = std::max(high, value);
        }
        series->replace(points);
        chart->addSeries(series);
        lines.push_back(series);
    }
    if (!(high > low))
        high = low + 1;
    QCategoryAxis *yAxis = amountAxis(low, high, scale);
    chart->addAxis(yAxis, Qt::AlignLeft);
    for (QLineSeries *series : lines) {
        series->attachAxis(xAxis);
        series->attachAxis(yAxis);
    }
    return chart;
}

Status writeFailure(const QString &path, const QString &why)
{
    return Status::failure(QStringLiteral("could not write %1: %2").arg(path, why));
}

Status render(QGraphicsScene &scene, const QString &title, const QString &path, QSize size)
{
    const QRectF area(QPointF(0, 0), QSizeF(size));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return writeFailure(path, file.errorString());

    if (QFileInfo(path).suffix().compare(u"svg", Qt::CaseInsensitive) == 0) {
        QSvgGenerator svg;
        svg.setOutputDevice(&file);
        svg.setSize(size);
        svg.setViewBox(area);
        svg.setTitle(title);
        QPainter painter(&svg);
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, area, area);
        painter.end();
    } else {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, area, area);
        painter.end();
        if (!image.save(&file, "PNG"))
            return writeFailure(path, QStringLiteral("the PNG could not be encoded"));
    }
    if (!file.commit())
        return writeFailure(path, file.errorString());
    return {};
}

} // namespace

Status writeScheduleChart(ListKind list, const ScenarioRecord &record, int recordNumber,
                          const QString &fileName, const QString &outputPath, QSize size)
{
    // Charts are graphics widgets: without a QApplication they would abort.
    if (qobject_cast<QApplication *>(QCoreApplication::instance()) == nullptr)
        return Status::failure(QStringLiteral("a chart can only be drawn in a QApplication"));
    ScheduleData data;
    if (Status status = computeSchedule(list, record, recordNumber, fileName, data); !status.ok())
        return status;
    if (data.rowCount() == 0) {
        return Status::failure(
            QStringLiteral("record %1 of %2 has no periods to chart: its years times its "
                           "payments per year give %3")
                .arg(recordNumber)
                .arg(fileName)
                .arg(data.counted ? QString::number(data.periodCount)
                                  : QStringLiteral("nothing (no years)")));
    }

    QGraphicsScene scene;
    QChart *chart = buildChart(list, record, recordNumber, data, size);
    scene.addItem(chart); // the scene owns the chart
    scene.setSceneRect(QRectF(QPointF(0, 0), QSizeF(size)));
    chart->setGeometry(scene.sceneRect());
    return render(scene, chart->title(), outputPath, size);
}

} // namespace quillet::report
