#pragma once

#include <QString>
#include <QtGlobal>

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

    void raw(const char* text, qsizetype length);
    void raw(const char* text);
    void raw(char c);
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

private:
    void escaped(const QString& text, bool attribute);
    void make_room(qsizetype bytes);

    QIODevice* m_device;
    std::unique_ptr<char[]> m_buffer;
    qsizetype m_used = 0;
    bool m_failed = false;
    QString m_error;
};
