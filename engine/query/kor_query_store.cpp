#include "kor_query_store.h"

#include "kor_query_schema.h"
#include "kor_sql_parser.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace
{
const int FORMAT_VERSION = 1;

// XML 1.0 cannot carry most control characters, stray surrogates or the two
// non-characters at the end of the BMP; written anyway, they would make the
// whole file unreadable and every saved query would be lost.
bool fits_xml(const QString& text, bool allow_line_breaks)
{
    for (int i = 0; i < text.size(); ++i)
    {
        const QChar c = text.at(i);
        const ushort u = c.unicode();
        if (u < 0x20)
        {
            if (!allow_line_breaks || (u != '\t' && u != '\n' && u != '\r'))
                return false;
        }
        else if (u == 0xFFFE || u == 0xFFFF)
            return false;
        else if (c.isHighSurrogate())
        {
            if (i + 1 >= text.size() || !text.at(i + 1).isLowSurrogate())
                return false;
            ++i;
        }
        else if (c.isLowSurrogate())
            return false;
    }
    return true;
}
}

QString KOR_QUERY_STORE::file_name()
{
    return QStringLiteral("Veld_queries.xml");
}

KOR_QUERY_STORE::~KOR_QUERY_STORE()
{
    clear();
}

void KOR_QUERY_STORE::clear()
{
    qDeleteAll(m_queries);
    m_queries.clear();
}

void KOR_QUERY_STORE::load(const QString& database_path, QStringList& warnings)
{
    clear();
    const QString path = QDir(database_path).filePath(file_name());
    QFile file(path);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly))
    {
        warnings << QStringLiteral("%1: cannot be read (%2); no saved queries were loaded")
                        .arg(QDir::toNativeSeparators(path), file.errorString());
        return;
    }

    auto at_line = [&path](qint64 line) {
        return QStringLiteral("%1, line %2").arg(QDir::toNativeSeparators(path)).arg(line);
    };
    QMap<QString, KOR_QUERY_SCHEMA*> read;
    QStringList found_warnings;
    QXmlStreamReader xml(&file);
    if (xml.readNextStartElement())
    {
        if (xml.name() != QLatin1String("queries"))
            xml.raiseError(QStringLiteral("the root element is <%1>, not <queries>").arg(xml.name().toString()));
        else if (xml.attributes().value(QLatin1String("version")).toInt() > FORMAT_VERSION)
            found_warnings << QStringLiteral("%1: written by a newer version (format %2); reading what is known")
                                  .arg(at_line(xml.lineNumber()),
                                       xml.attributes().value(QLatin1String("version")).toString());
    }
    while (!xml.hasError() && xml.readNextStartElement())
    {
        if (xml.name() != QLatin1String("query"))
        {
            xml.skipCurrentElement();
            continue;
        }
        const qint64 line = xml.lineNumber();
        const QString name = xml.attributes().value(QLatin1String("name")).toString().trimmed();
        QString statement;
        QString description;
        bool has_statement = false;
        while (!xml.hasError() && xml.readNextStartElement())
        {
            if (xml.name() == QLatin1String("sql"))
            {
                statement = xml.readElementText();
                has_statement = true;
            }
            else if (xml.name() == QLatin1String("description"))
                description = xml.readElementText();
            else
                xml.skipCurrentElement();
        }
        if (xml.hasError())
            break;
        if (name.isEmpty())
        {
            found_warnings << QStringLiteral("%1: a query without a name is skipped").arg(at_line(line));
            continue;
        }
        if (read.contains(name))
        {
            found_warnings << QStringLiteral("%1: a second query named '%2' is skipped").arg(at_line(line), name);
            continue;
        }
        if (!has_statement)
        {
            found_warnings << QStringLiteral("%1: the query '%2' has no <sql> statement and is skipped")
                                  .arg(at_line(line), name);
            continue;
        }
        KOR_SQL_STATEMENT parsed;
        QString error;
        if (!KOR_SQL_PARSER::parse(statement, parsed, error))
            found_warnings << QStringLiteral("%1: the query '%2' does not read: %3").arg(at_line(line), name, error);
        read.insert(name, new KOR_QUERY_SCHEMA(name, statement, description));
    }
    if (xml.hasError())
    {
        qDeleteAll(read);
        warnings << QStringLiteral("%1, column %2: %3; no saved queries were loaded")
                        .arg(at_line(xml.lineNumber()))
                        .arg(xml.columnNumber())
                        .arg(xml.errorString());
        return;
    }
    warnings << found_warnings;
    m_queries = read;
}

QString KOR_QUERY_STORE::save(const QString& database_path, const QList<const KOR_QUERY_SCHEMA*>& queries)
{
    QMap<QString, const KOR_QUERY_SCHEMA*> sorted;
    for (const KOR_QUERY_SCHEMA* query : queries)
    {
        if (!query || query->get_query_name().trimmed().isEmpty())
            return QStringLiteral("A saved query needs a name");
        if (query->get_query_name() != query->get_query_name().trimmed())
            return QStringLiteral("The query name '%1' begins or ends with spaces").arg(query->get_query_name());
        if (!fits_xml(query->get_query_name(), false) || !fits_xml(query->statement(), true)
            || !fits_xml(query->description(), true))
            return QStringLiteral("The query '%1' holds a control character that cannot be saved")
                .arg(query->get_query_name());
        if (sorted.contains(query->get_query_name()))
            return QStringLiteral("Two saved queries are named '%1'").arg(query->get_query_name());
        sorted.insert(query->get_query_name(), query);
    }

    const QString path = QDir(database_path).filePath(file_name());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QStringLiteral("Cannot write %1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("queries"));
    xml.writeAttribute(QStringLiteral("version"), QString::number(FORMAT_VERSION));
    for (const KOR_QUERY_SCHEMA* query : sorted)
    {
        xml.writeStartElement(QStringLiteral("query"));
        xml.writeAttribute(QStringLiteral("name"), query->get_query_name());
        if (!query->description().isEmpty())
            xml.writeTextElement(QStringLiteral("description"), query->description());
        xml.writeTextElement(QStringLiteral("sql"), query->statement());
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    if (xml.hasError() || !file.commit())
        return QStringLiteral("Cannot write %1: %2").arg(QDir::toNativeSeparators(path), file.errorString());
    return QString();
}
