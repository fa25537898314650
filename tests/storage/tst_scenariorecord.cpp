#include "scenariorecord.h"

#include <QRandomGenerator>
#include <QTest>
#include <QtEndian>

#include <bit>

using namespace quillet;

namespace {

double doubleAt(const QByteArray &bytes, int offset)
{
    return std::bit_cast<double>(
        qFromLittleEndian<quint64>(reinterpret_cast<const uchar *>(bytes.constData()) + offset));
}

qint16 int16At(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<qint16>(reinterpret_cast<const uchar *>(bytes.constData()) + offset);
}

QByteArray randomBytes(QRandomGenerator &random, int size)
{
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

} // namespace

class TestScenarioRecord : public QObject
{
    Q_OBJECT

private slots:
    void blankMarkerHasItsExactBitPattern();
    void newBlankRecordIsWrittenWithBlankMarkersAtTheirOffsets();
    void makingBlankKeepsSpare();
    void fieldsAreWrittenLittleEndianAtTheirOffsets();
    void fileSlotBuiltByteByByteReadsBackRight();
    void fillerIsWrittenAsZerosAndIgnoredOnRead();
    void randomSlotsRoundTripBitExactly();
    void randomRecordsRoundTripBitExactly();
    void shortSlotReadsTheRestAsZeros();
    void descriptionOf60CharactersIsStoredAsItsFirst50();
    void descriptionOf3CharactersIsPaddedAndShownTrimmed();
    void trimmingRemovesSpacesOnly();
    void charactersOutsideWindows1252AreStoredAsQuestionMarks();
    void windows1252CharactersAreStoredAsSingleBytes();
    void everyDescriptionByteDecodesAndEncodesBack();
};

void TestScenarioRecord::blankMarkerHasItsExactBitPattern()
{
    QCOMPARE(std::bit_cast<quint64>(BlankValue), Q_UINT64_C(0xC1CD6DB1A0800000));
    QCOMPARE(BlankPerYear, qint16(-1));
}

void TestScenarioRecord::newBlankRecordIsWrittenWithBlankMarkersAtTheirOffsets()
{
    ScenarioRecord record;
    record.makeBlank();
    const QByteArray bytes = encodeRecord(record);

    QCOMPARE(bytes.size(), 148);
    QCOMPARE(bytes.mid(2, 50), QByteArray(50, ' '));
    for (const int offset : {52, 60, 68, 76, 86})
        QCOMPARE(qFromLittleEndian<quint64>(bytes.constData() + offset),
                 Q_UINT64_C(0xC1CD6DB1A0800000));
    QCOMPARE(int16At(bytes, 84), qint16(-1));
}

void TestScenarioRecord::makingBlankKeepsSpare()
{
    ScenarioRecord record;
    record.Spare = 1234;
    record.makeBlank();
    QCOMPARE(record.Spare, qint16(1234));
    QCOMPARE(int16At(encodeRecord(record), 0), qint16(1234));
}

void TestScenarioRecord::fieldsAreWrittenLittleEndianAtTheirOffsets()
{
    ScenarioRecord record;
    record.Spare = 0x0102;
    setDescText(record, u"Retirement");
    record.InitialAmount = 1000.5;
    record.IRate = 0.12;
    record.Years = 10;
    record.Payment = -100.25;
    record.PerYear = 12;
    record.FutureValue = 98765.4321;
    const QByteArray bytes = encodeRecord(record);

    QCOMPARE(bytes.at(0), char(0x02));
    QCOMPARE(bytes.at(1), char(0x01));
    QCOMPARE(bytes.mid(2, 50), QByteArray("Retirement") + QByteArray(40, ' '));
    QVERIFY(doubleAt(bytes, 52) == 1000.5);
    QVERIFY(doubleAt(bytes, 60) == 0.12);
    QVERIFY(doubleAt(bytes, 68) == 10.0);
    QVERIFY(doubleAt(bytes, 76) == -100.25);
    QCOMPARE(int16At(bytes, 84), qint16(12));
    QVERIFY(doubleAt(bytes, 86) == 98765.4321);
    // 10.0 as a double is 0x4024000000000000: its low byte comes first.
    QCOMPARE(bytes.mid(68, 8), QByteArray::fromHex("0000000000002440"));
}

void TestScenarioRecord::fileSlotBuiltByteByByteReadsBackRight()
{
    QByteArray slot(148, '\0');
    slot[0] = char(0xFE); // Spare -2
    slot[1] = char(0xFF);
    const QByteArray desc = QByteArray("Car loan").leftJustified(50, ' ');
    slot.replace(2, 50, desc);
    slot.replace(52, 8, QByteArray::fromHex("0000000000408F40")); // 1000
    slot.replace(60, 8, QByteArray::fromHex("B81E85EB51B8AE3F")); // 0.06
    slot.replace(68, 8, QByteArray::fromHex("0000000000003E40")); // 30
    slot.replace(76, 8, QByteArray::fromHex("000080A0B16DCDC1")); // blank
    slot[84] = char(12);
    slot[85] = char(0);
    slot.replace(86, 8, QByteArray::fromHex("000080A0B16DCDC1")); // blank

    const ScenarioRecord record = decodeRecord(slot);
    QCOMPARE(record.Spare, qint16(-2));
    QCOMPARE(trimmedDesc(record), QStringLiteral("Car loan"));
    QVERIFY(record.InitialAmount == 1000.0);
    QVERIFY(record.IRate == 0.06);
    QVERIFY(record.Years == 30.0);
    QVERIFY(record.Payment == BlankValue);
    QCOMPARE(record.PerYear, qint16(12));
    QVERIFY(record.FutureValue == BlankValue);
}

void TestScenarioRecord::fillerIsWrittenAsZerosAndIgnoredOnRead()
{
    QByteArray slot = encodeRecord(ScenarioRecord{});
    QCOMPARE(slot.mid(94), QByteArray(54, '\0'));

    slot.replace(94, 54, QByteArray(54, char(0xAB)));
    const QByteArray rewritten = encodeRecord(decodeRecord(slot));
    QCOMPARE(rewritten.left(94), slot.left(94));
    QCOMPARE(rewritten.mid(94), QByteArray(54, '\0'));
}

void TestScenarioRecord::randomSlotsRoundTripBitExactly()
{
    QRandomGenerator random(20261121);
    for (int round = 0; round < 2000; ++round) {
        QByteArray slot = randomBytes(random, 94) + QByteArray(54, '\0');
        QCOMPARE(encodeRecord(decodeRecord(slot)), slot);
    }
}

void TestScenarioRecord::randomRecordsRoundTripBitExactly()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 2000; ++round) {
        ScenarioRecord record;
        record.Spare = static_cast<qint16>(random.bounded(65536) - 32768);
        for (char &byte : record.Desc)
            byte = static_cast<char>(random.bounded(256));
        for (double *field : {&record.InitialAmount, &record.IRate, &record.Years, &record.Payment,
                              &record.FutureValue})
            *field = std::bit_cast<double>(random.generate64());
        record.PerYear = static_cast<qint16>(random.bounded(65536) - 32768);

        const QByteArray bytes = encodeRecord(record);
        const ScenarioRecord back = decodeRecord(bytes);
        // Compared as bytes: a random double may be a NaN, unequal to itself.
        QCOMPARE(encodeRecord(back), bytes);
        QCOMPARE(std::bit_cast<quint64>(back.Years), std::bit_cast<quint64>(record.Years));
        QCOMPARE(back.Desc, record.Desc);
        QCOMPARE(back.Spare, record.Spare);
        QCOMPARE(back.PerYear, record.PerYear);
    }
}

void TestScenarioRecord::shortSlotReadsTheRestAsZeros()
{
    ScenarioRecord record;
    record.makeBlank();
    const QByteArray full = encodeRecord(record);

    const ScenarioRecord cut = decodeRecord(QByteArrayView(full).first(60));
    QCOMPARE(cut.Desc, record.Desc);
    QVERIFY(cut.InitialAmount == BlankValue);
    QVERIFY(cut.IRate == 0.0);
    QVERIFY(cut.Years == 0.0);
    QCOMPARE(cut.PerYear, qint16(0));

    const ScenarioRecord empty = decodeRecord(QByteArrayView());
    QCOMPARE(encodeRecord(empty), QByteArray(148, '\0'));
}

void TestScenarioRecord::descriptionOf60CharactersIsStoredAsItsFirst50()
{
    const QString sixty = QStringLiteral("0123456789").repeated(6);
    ScenarioRecord record;
    setDescText(record, sixty);
    QCOMPARE(descText(record), sixty.left(50));
    QCOMPARE(encodeRecord(record).mid(2, 50), sixty.left(50).toLatin1());
}

void TestScenarioRecord::descriptionOf3CharactersIsPaddedAndShownTrimmed()
{
    ScenarioRecord record;
    setDescText(record, u"Car");
    QCOMPARE(encodeRecord(record).mid(2, 50), QByteArray("Car") + QByteArray(47, ' '));
    QCOMPARE(trimmedDesc(record), QStringLiteral("Car"));
}

void TestScenarioRecord::trimmingRemovesSpacesOnly()
{
    ScenarioRecord record;
    setDescText(record, u"  \tHouse \t ");
    QCOMPARE(trimmedDesc(record), QStringLiteral("\tHouse \t"));
    setDescText(record, u"");
    QCOMPARE(trimmedDesc(record), QString());
}

void TestScenarioRecord::charactersOutsideWindows1252AreStoredAsQuestionMarks()
{
    ScenarioRecord record;
    // A Greek letter, a CJK character and an emoji (two UTF-16 units, one
    // character): each becomes one question mark.
    setDescText(record, u"a\u03A9b\u4E2Dc\U0001F600d");
    QCOMPARE(encodeRecord(record).mid(2, 8), QByteArray("a?b?c?d "));
    QCOMPARE(trimmedDesc(record), QStringLiteral("a?b?c?d"));
}

void TestScenarioRecord::windows1252CharactersAreStoredAsSingleBytes()
{
    ScenarioRecord record;
    setDescText(record, u"Caf\u00E9 \u20AC5 \u201Cok\u201D");
    QCOMPARE(encodeRecord(record).mid(2, 12), QByteArray("Caf\xE9 \x80"
                                                         "5 \x93ok\x94"));
    QCOMPARE(trimmedDesc(record), QStringLiteral(u"Caf\u00E9 \u20AC5 \u201Cok\u201D"));
}

void TestScenarioRecord::everyDescriptionByteDecodesAndEncodesBack()
{
    QByteArray all(256, '\0');
    for (int byte = 0; byte < 256; ++byte)
        all[byte] = static_cast<char>(byte);
    QCOMPARE(encodeWindows1252(decodeWindows1252(all)), all);
}

QTEST_GUILESS_MAIN(TestScenarioRecord)
#include "tst_scenariorecord.moc"
