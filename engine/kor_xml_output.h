#pragma once

#include <QString>
#include <QtGlobal>

#include <cstring>
#include <memory>

class QIODevice;

// A fast, buffered writer of the engine's XML files. It encodes UTF-16 to
// UTF-8 and escapes in one pass, so that writing a large table costs little
// more than copying its text. Output goes to a device in large chunks.
//
// Escaping keeps every text exact on the way back through the reader:
// &, <, > always; in attributes also ", tab and line feed; carriage returns
// and other control characters as character references.
class KOR_XML_OUTPUT
{
public:
    explicit KOR_XML_OUTPUT(QIODevice* device);
    ~KOR_XML_OUTPUT();
    KOR_XML_OUTPUT(const KOR_XML_OUTPUT&) = delete;
    KOR_XML_OUTPUT& operator=(const KOR_XML_OUTPUT&) = delete;

    // The small pieces of a table file are copied here directly: a call a
    // piece was a fifth of writing a large table.
    void raw(const char* text, qsizetype length)
    {
        if (m_used + length <= BUFFER_SIZE)
        {
            std::memcpy(m_buffer.get() + m_used, text, size_t(length));
            m_used += length;
            return;
        }
        raw_in_pieces(text, length);
    }
    void raw(const char* text) { raw(text, qsizetype(std::strlen(text))); }
    void raw(char c)
    {
        if (m_used >= BUFFER_SIZE)
            make_room(1);
        m_buffer[m_used++] = c;
    }
    // Escaped element content.
    void text(const QString& text);
    // Escaped attribute content (without the quotes).
    void attribute_text(const QString& text);
    void number(qint64 value);
    void unsigned_number(quint64 value);
    // name="value" with a leading blank.
    void attribute(const char* name, const QString& value);

    // Writes what is buffered; false (and the device's error) on failure.
    bool flush(QString& error);
    bool failed() const { return m_failed; }

    static constexpr qsizetype BUFFER_SIZE = 1 << 20;

private:
    void raw_in_pieces(const char* text, qsizetype length);
    void escaped(const QString& text, bool attribute);
    void make_room(qsizetype bytes);

    QIODevice* m_device;
    std::unique_ptr<char[]> m_buffer;
    qsizetype m_used = 0;
    bool m_failed = false;
    QString m_error;
};
