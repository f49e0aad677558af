#include "kor_xml_output.h"

#include <QIODevice>

#include <charconv>
#include <cstring>

namespace
{
constexpr qsizetype BUFFER_SIZE = KOR_XML_OUTPUT::BUFFER_SIZE;
// Room kept for one escaped character and small raw pieces.
constexpr qsizetype RESERVE = 64;
} // namespace

KOR_XML_OUTPUT::KOR_XML_OUTPUT(QIODevice* device) : m_device(device), m_buffer(new char[BUFFER_SIZE]) {}

KOR_XML_OUTPUT::~KOR_XML_OUTPUT() = default;

void KOR_XML_OUTPUT::make_room(qsizetype bytes)
{
    if (m_used + bytes <= BUFFER_SIZE)
        return;
    if (!m_failed && m_used > 0)
    {
        if (m_device->write(m_buffer.get(), m_used) != m_used)
        {
            m_failed = true;
            m_error = m_device->errorString();
        }
    }
    m_used = 0;
}

void KOR_XML_OUTPUT::raw_in_pieces(const char* text, qsizetype length)
{
    while (length > 0)
    {
        make_room(qMin<qsizetype>(length, RESERVE));
        const qsizetype piece = qMin(length, BUFFER_SIZE - m_used);
        std::memcpy(m_buffer.get() + m_used, text, size_t(piece));
        m_used += piece;
        text += piece;
        length -= piece;
    }
}

void KOR_XML_OUTPUT::text(const QString& text)
{
    escaped(text, false);
}

void KOR_XML_OUTPUT::attribute_text(const QString& text)
{
    escaped(text, true);
}

void KOR_XML_OUTPUT::attribute(const char* name, const QString& value)
{
    raw(' ');
    raw(name);
    raw("=\"", 2);
    escaped(value, true);
    raw('"');
}

void KOR_XML_OUTPUT::number(qint64 value)
{
    make_room(24);
    const auto result = std::to_chars(m_buffer.get() + m_used, m_buffer.get() + m_used + 24, value);
    m_used = result.ptr - m_buffer.get();
}

void KOR_XML_OUTPUT::unsigned_number(quint64 value)
{
    make_room(24);
    const auto result = std::to_chars(m_buffer.get() + m_used, m_buffer.get() + m_used + 24, value);
    m_used = result.ptr - m_buffer.get();
}

void KOR_XML_OUTPUT::escaped(const QString& text, bool attribute)
{
    const ushort* p = reinterpret_cast<const ushort*>(text.constData());
    const ushort* end = p + text.size();
    while (p < end)
    {
        // Room for at least one character beyond the limit below, so that
        // every pass makes progress.
        make_room(2 * RESERVE);
        char* out = m_buffer.get() + m_used;
        char* const limit = m_buffer.get() + BUFFER_SIZE - RESERVE;
        // Plain ASCII, the common case, is copied straight.
        while (p < end && out < limit)
        {
            const ushort c = *p;
            if (c >= 0x20 && c < 0x80 && c != '&' && c != '<' && c != '>' && c != '"')
            {
                *out++ = char(c);
                ++p;
                continue;
            }
            if (c < 0x80)
            {
                const char* replacement = nullptr;
                switch (c)
                {
                case '&':
                    replacement = "&amp;";
                    break;
                case '<':
                    replacement = "&lt;";
                    break;
                case '>':
                    replacement = "&gt;";
                    break;
                case '"':
                    replacement = attribute ? "&quot;" : "\"";
                    break;
                case '\t':
                    replacement = attribute ? "&#9;" : "\t";
                    break;
                case '\n':
                    replacement = attribute ? "&#10;" : "\n";
                    break;
                default:
                    break;
                }
                if (replacement)
                {
                    const size_t length = std::strlen(replacement);
                    std::memcpy(out, replacement, length);
                    out += length;
                }
                else
                {
                    // Carriage returns and other control characters as
                    // references, so that no parser normalises them away.
                    out += std::snprintf(out, 8, "&#x%X;", unsigned(c));
                }
                ++p;
                continue;
            }
            uint code = c;
            if (QChar::isHighSurrogate(c) && p + 1 < end && QChar::isLowSurrogate(p[1]))
            {
                code = QChar::surrogateToUcs4(c, p[1]);
                ++p;
            }
            else if (QChar::isSurrogate(c))
            {
                code = 0xFFFD;
            }
            ++p;
            if (code < 0x800)
            {
                *out++ = char(0xC0 | (code >> 6));
                *out++ = char(0x80 | (code & 0x3F));
            }
            else if (code < 0x10000)
            {
                *out++ = char(0xE0 | (code >> 12));
                *out++ = char(0x80 | ((code >> 6) & 0x3F));
                *out++ = char(0x80 | (code & 0x3F));
            }
            else
            {
                *out++ = char(0xF0 | (code >> 18));
                *out++ = char(0x80 | ((code >> 12) & 0x3F));
                *out++ = char(0x80 | ((code >> 6) & 0x3F));
                *out++ = char(0x80 | (code & 0x3F));
            }
        }
        m_used = out - m_buffer.get();
    }
}

bool KOR_XML_OUTPUT::flush(QString& error)
{
    if (!m_failed && m_used > 0)
    {
        if (m_device->write(m_buffer.get(), m_used) != m_used)
        {
            m_failed = true;
            m_error = m_device->errorString();
        }
    }
    m_used = 0;
    if (m_failed)
        error = m_error.isEmpty() ? QStringLiteral("write failed") : m_error;
    return !m_failed;
}
