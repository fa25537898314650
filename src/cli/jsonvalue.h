#pragma once

#include <QString>

#include <utility>
#include <variant>
#include <vector>

namespace quillet::report {

// A JSON value for the report's output. Objects keep their members in the
// order they were given, and numbers are written with 17 significant digits
// so that every double reads back exactly.
class JsonValue final
{
public:
    using Array = std::vector<JsonValue>;
    using Object = std::vector<std::pair<QString, JsonValue>>;

    JsonValue() = default;

    // Factories rather than converting constructors: a string literal would
    // otherwise quietly become a bool.
    static JsonValue null() { return {}; }
    static JsonValue boolean(bool value);
    static JsonValue integer(qint64 value);
    // null for a value that is not finite, which JSON cannot hold.
    static JsonValue number(double value);
    static JsonValue string(QString value);
    static JsonValue array(Array value);
    static JsonValue object(Object value);

    // Two blanks per level; an array or object that holds only plain values
    // goes on one line. No newline at the end.
    QString toJson() const;

private:
    friend class JsonArrayWriter;
    // An array already written out, kept as its text.
    struct Written
    {
        QString json;
    };

    bool isContainer() const;
    bool holdsOnlyPlainValues() const;
    void write(QString &out, int level) const;

    std::variant<std::monostate, bool, qint64, double, QString, Array, Object, Written> m_value;
};

// Writes a long array one element at a time, for an array that is the
// member of an object at `level` (1 for a member of the document): the
// elements are written as they come instead of held as values, so that
// 32,767 schedule rows cost their text and not a tree of values besides.
class JsonArrayWriter final
{
public:
    explicit JsonArrayWriter(int level) : m_level(level) {}

    void append(const JsonValue &element);
    // The array as a value to put in its object; the writer is then empty.
    JsonValue take();

private:
    int m_level;
    qsizetype m_count = 0;
    bool m_lastWasContainer = false;
    QString m_json;
};

// The text as a JSON string literal, quotes included.
QString jsonString(const QString &text);

} // namespace quillet::report
