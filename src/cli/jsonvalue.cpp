#include "jsonvalue.h"

#include <cmath>
#include <utility>

namespace quillet::report {

namespace {

void writeIndent(QString &out, int level)
{
    out += QString(qsizetype(2) * level, u' ');
}

} // namespace

JsonValue JsonValue::boolean(bool value)
{
    JsonValue json;
    json.m_value = value;
    return json;
}

JsonValue JsonValue::integer(qint64 value)
{
    JsonValue json;
    json.m_value = value;
    return json;
}

JsonValue JsonValue::number(double value)
{
    JsonValue json;
    if (std::isfinite(value))
        json.m_value = value;
    return json;
}

JsonValue JsonValue::string(QString value)
{
    JsonValue json;
    json.m_value = std::move(value);
    return json;
}

JsonValue JsonValue::array(Array value)
{
    JsonValue json;
    json.m_value = std::move(value);
    return json;
}

JsonValue JsonValue::object(Object value)
{
    JsonValue json;
    json.m_value = std::move(value);
    return json;
}

QString JsonValue::toJson() const
{
    QString out;
    write(out, 0);
    return out;
}

bool JsonValue::isContainer() const
{
    return std::holds_alternative<Array>(m_value) || std::holds_alternative<Object>(m_value) ||
           std::holds_alternative<Written>(m_value);
}

bool JsonValue::holdsOnlyPlainValues() const
{
    if (const auto *array = std::get_if<Array>(&m_value)) {
        for (const JsonValue &element : *array) {
            if (element.isContainer())
                return false;
        }
        return true;
    }
    if (const auto *object = std::get_if<Object>(&m_value)) {
        for (const auto &member : *object) {
            if (member.second.isContainer())
                return false;
        }
        return true;
    }
    return true;
}

void JsonValue::write(QString &out, int level) const
{
    if (std::holds_alternative<std::monostate>(m_value)) {
        out += u"null";
    } else if (const bool *flag = std::get_if<bool>(&m_value)) {
        out += *flag ? u"true" : u"false";
    } else if (const qint64 *whole = std::get_if<qint64>(&m_value)) {
        out += QString::number(*whole);
    } else if (const double *number = std::get_if<double>(&m_value)) {
        // QString::number ignores the locale: always a '.' and no grouping.
        out += QString::number(*number, 'g', 17);
    } else if (const QString *text = std::get_if<QString>(&m_value)) {
        out += jsonString(*text);
    } else if (const Written *written = std::get_if<Written>(&m_value)) {
        out += written->json;
    } else {
        const auto *array = std::get_if<Array>(&m_value);
        const auto *object = std::get_if<Object>(&m_value);
        const qsizetype size = array ? qsizetype(array->size()) : qsizetype(object->size());
        out += array ? u'[' : u'{';
        const QChar close = array ? u']' : u'}';
        if (size == 0) {
            out += close;
            return;
        }
        const bool oneLine = holdsOnlyPlainValues();
        for (qsizetype k = 0; k < size; ++k) {
            if (k > 0)
                out += u',';
            if (oneLine) {
                if (k > 0)
                    out += u' ';
            } else {
                out += u'\n';
                writeIndent(out, level + 1);
            }
            if (array) {
                (*array)[k].write(out, level + 1);
            } else {
                const auto &[name, value] = (*object)[k];
                out += jsonString(name) + u": ";
                value.write(out, level + 1);
            }
        }
        if (!oneLine) {
            out += u'\n';
            writeIndent(out, level);
        }
        out += close;
    }
}

void JsonArrayWriter::append(const JsonValue &element)
{
    m_json += m_count++ == 0 ? u'[' : u',';
    // An array of plain values stays on one line, as JsonValue writes it.
    if (element.isContainer()) {
        m_json += u'\n';
        writeIndent(m_json, m_level + 1);
    } else if (m_count > 1) {
        m_json += u' ';
    }
    element.write(m_json, m_level + 1);
    m_lastWasContainer = element.isContainer();
}

JsonValue JsonArrayWriter::take()
{
    if (m_count == 0) {
        m_json = QStringLiteral("[");
    } else if (m_lastWasContainer) {
        m_json += u'\n';
        writeIndent(m_json, m_level);
    }
    m_json += u']';
    JsonValue array;
    array.m_value = JsonValue::Written{std::exchange(m_json, QString())};
    m_count = 0;
    return array;
}

QString jsonString(const QString &text)
{
    QString out;
    out.reserve(text.size() + 2);
    out += u'"';
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'"':
            out += u"\\\"";
            break;
        case u'\\':
            out += u"\\\\";
            break;
        case u'\b':
            out += u"\\b";
            break;
        case u'\f':
            out += u"\\f";
            break;
        case u'\n':
            out += u"\\n";
            break;
        case u'\r':
            out += u"\\r";
            break;
        case u'\t':
            out += u"\\t";
            break;
        default:
            if (c.unicode() < 0x20)
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QChar(u'0'));
            else
                out += c;
        }
    }
    out += u'"';
    return out;
}

} // namespace quillet::report
