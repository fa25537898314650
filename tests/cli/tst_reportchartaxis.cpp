#include "reporttestsupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <memory>

using namespace quillet;
using namespace quillet::test;

namespace {

// The texts of an SVG file in document order, each trimmed.
QStringList svgTexts(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QStringList texts;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::Characters && !xml.isWhitespace())
            texts.append(xml.text().toString().trimmed());
    }
    return xml.hasError() ? QStringList() : texts;
}

QStringList amountLabels(const QStringList &texts)
{
    QStringList labels;
    for (const QString &text : texts) {
        if (text.startsWith(u'$'))
            labels << text;
    }
    return labels;
}

} // namespace

// The axes and title of a chart: amounts in round steps of 1, 2, 2.5 or 5
// times a power of ten, or the next power of ten, in cents where they are
// small; time in years with a decimal when there are few; the list and
// number for a scenario without a description.
class TestReportChartAxis : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void amountsUpTo40000AreMarkedEveryTenThousand();
    void scheduleOfNothingButZerosIsMarkedInCentsUpToOneDollar();
    void shortScheduleInYearsIsMarkedInHalfYears();
    void loanWithoutADescriptionIsTitledByListAndNumber();

private:
    QString path() const { return m_dir->path(); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestReportChartAxis::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY2(m_dir->isValid(), "no temporary directory");
    QVERIFY(writeList(QDir(path()).filePath(InvestmentsFile),
                      {scenario(QStringLiteral("Nothing"), 0, 0, 1, 0, 12, Blank)}));
    QVERIFY(writeList(QDir(path()).filePath(LoansFile),
                      {scenario(QStringLiteral("Car"), 40000, 0.06, 4, Blank, 12, Blank),
                       scenario(QStringLiteral("Daily"), 1000, 0.05, 2, Blank, 365, Blank),
                       scenario(QString(), 40000, 0.06, 4, Blank, 12, Blank)}));
}

void TestReportChartAxis::amountsUpTo40000AreMarkedEveryTenThousand()
{
    // A sixth of the range is about 6,700: more than 5,000, so the step is
    // the next power of ten.
    const QString svg = QDir(path()).filePath(QStringLiteral("car.svg"));
    const Run run = runReport({QStringLiteral("chart"), QStringLiteral("loans"),
                               QStringLiteral("1"), QStringLiteral("--locale"),
                               QStringLiteral("en_US"), QStringLiteral("--output"), svg},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(
        amountLabels(svgTexts(svg)),
        (QStringList{QStringLiteral("$0"), QStringLiteral("$10,000"), QStringLiteral("$20,000"),
                     QStringLiteral("$30,000"), QStringLiteral("$40,000")}));
}

void TestReportChartAxis::scheduleOfNothingButZerosIsMarkedInCentsUpToOneDollar()
{
    const QString svg = QDir(path()).filePath(QStringLiteral("nothing.svg"));
    const Run run = runReport({QStringLiteral("chart"), QStringLiteral("investments"),
                               QStringLiteral("1"), QStringLiteral("--locale"),
                               QStringLiteral("en_US"), QStringLiteral("--output"), svg},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(
        amountLabels(svgTexts(svg)),
        (QStringList{QStringLiteral("$0.00"), QStringLiteral("$0.20"), QStringLiteral("$0.40"),
                     QStringLiteral("$0.60"), QStringLiteral("$0.80"), QStringLiteral("$1.00")}));
}

void TestReportChartAxis::shortScheduleInYearsIsMarkedInHalfYears()
{
    // 730 daily periods: the time axis counts years, with one decimal as
    // there are fewer than ten.
    const QString svg = QDir(path()).filePath(QStringLiteral("daily.svg"));
    const Run run = runReport({QStringLiteral("chart"), QStringLiteral("loans"),
                               QStringLiteral("2"), QStringLiteral("--locale"),
                               QStringLiteral("en_US"), QStringLiteral("--output"), svg},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    const QStringList texts = svgTexts(svg);
    const qsizetype years = texts.indexOf(QStringLiteral("Years"));
    QVERIFY2(years >= 0, qPrintable(texts.join(u'|')));
    QCOMPARE(texts.mid(years + 2, 5),
             (QStringList{QStringLiteral("0.0"), QStringLiteral("0.5"), QStringLiteral("1.0"),
                          QStringLiteral("1.5"), QStringLiteral("2.0")}));
    QVERIFY(!texts.contains(QStringLiteral("Period")));
}

void TestReportChartAxis::loanWithoutADescriptionIsTitledByListAndNumber()
{
    const QString svg = QDir(path()).filePath(QStringLiteral("untitled.svg"));
    const Run run = runReport({QStringLiteral("chart"), QStringLiteral("loans"),
                               QStringLiteral("3"), QStringLiteral("--locale"),
                               QStringLiteral("en_US"), QStringLiteral("--output"), svg},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    const QStringList texts = svgTexts(svg);
    QCOMPARE(texts.value(0), QStringLiteral("Loan 3"));
    QCOMPARE(texts.count(QStringLiteral("Loan 3")), 2);
}

QTEST_GUILESS_MAIN(TestReportChartAxis)
#include "tst_reportchartaxis.moc"
