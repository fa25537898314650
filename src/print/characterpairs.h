#pragma once

#include <QChar>
#include <QtGlobal>

#include <cstddef>
#include <vector>

namespace quillet {

// Numbers the characters met in texts, up to a limit, and keeps one value
// for each character before each other one (and before the end of a text),
// worked out the first time it is asked for: what a long text is set or
// measured from at a look-up a character.
template <typename Value> class CharacterPairs
{
public:
    // A character not met yet, and one that gets no number (the table is
    // full, or its user refused it). Users may mark characters with other
    // values from 0xF0 up.
    static constexpr quint8 Unseen = 0;
    static constexpr quint8 Refused = 0xFF;
    static constexpr std::size_t MaxKinds = 200;

    // The character's number from 1, a mark, or Unseen.
    quint8 kind(QChar c) const { return m_kinds[c.unicode()]; }
    // Gives a character the next number; Refused when there is none left.
    quint8 number(QChar c)
    {
        quint8 &k = m_kinds[c.unicode()];
        if (m_characters.size() >= MaxKinds) {
            k = Refused;
        } else {
            m_characters.push_back(c);
            k = static_cast<quint8>(m_characters.size());
        }
        return k;
    }
    void mark(QChar c, quint8 mark) { m_kinds[c.unicode()] = mark; }
    QChar character(quint8 kind) const { return m_characters[kind - std::size_t{1}]; }

    // The value of a numbered character before another (`next` Unseen: before
    // the end of a text); compute(kind, next) works it out once.
    template <typename Compute> const Value &pair(quint8 kind, quint8 next, Compute compute)
    {
        constexpr std::size_t Columns = MaxKinds + 1;
        if (m_values.empty()) {
            m_values.resize(MaxKinds * Columns);
            m_known.resize(MaxKinds * Columns);
        }
        const std::size_t column = next == Unseen ? MaxKinds : next - std::size_t{1};
        const std::size_t at = (kind - std::size_t{1}) * Columns + column;
        if (!m_known[at]) {
            m_values[at] = compute(kind, next);
            m_known[at] = true;
        }
        return m_values[at];
    }

private:
    std::vector<quint8> m_kinds = std::vector<quint8>(0x10000, Unseen);
    std::vector<QChar> m_characters;
    std::vector<Value> m_values;
    std::vector<bool> m_known;
};

} // namespace quillet
