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
    bool isContainer() const;
    bool holdsOnlyPlainValues() const;
    void write(QString &out, int level) const;

    std::variant<std::monostate, bool, qint64, double, QString, Array, Object> m_value;
};

// The text as a JSON string literal, quotes included.
QString jsonString(const QString &text);

} // namespace quillet::report
