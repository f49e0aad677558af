#include "kor_permissions.h"

#include "kor_table_io.h"

#include <QDir>
#include <QFile>

#include <pugixml.hpp>

#include <cstring>

namespace
{
bool read_flag(QString& error, const pugi::xml_node& node, const char* name, bool& flag, const QString& where)
{
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute)
        return true;
    const QString value = QString::fromUtf8(attribute.value());
    if (value == QLatin1String("true"))
        flag = true;
    else if (value == QLatin1String("false"))
        flag = false;
    else
    {
        error = QStringLiteral("%1: %2 must be true or false, not '%3'")
                    .arg(where, QString::fromUtf8(name), value);
        return false;
    }
    return true;
}
} // namespace

bool KOR_PERMISSIONS::load(QString& error, const QString& database_path, const QString& user_name)
{
    m_tables.clear();
    const QString path = QDir(database_path).filePath(KOR_TABLE_IO::permissions_file_name());
    QFile file(path);
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly))
    {
        error = QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(bytes.constData(), size_t(bytes.size()));
    if (!parsed)
    {
        error = QStringLiteral("%1, %2: malformed XML: %3")
                    .arg(path, KOR_TABLE_IO::line_and_column(bytes, parsed.offset),
                         QString::fromUtf8(parsed.description()));
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (std::strcmp(root.name(), "permissions") != 0)
    {
        error = QStringLiteral("%1: the root element must be <permissions>").arg(path);
        return false;
    }
    for (pugi::xml_node table = root.child("table"); table; table = table.next_sibling("table"))
    {
        const QString where =
            QStringLiteral("%1, %2").arg(path, KOR_TABLE_IO::line_and_column(bytes, table.offset_debug()));
        const QString name = QString::fromUtf8(table.attribute("name").value());
        if (name.isEmpty())
        {
            error = QStringLiteral("%1: a table without a name").arg(where);
            return false;
        }
        RIGHTS rights;
        if (!read_flag(error, table, "restricted", rights.restricted, where) ||
            !read_flag(error, table, "add", rights.add, where) ||
            !read_flag(error, table, "edit", rights.edit, where) ||
            !read_flag(error, table, "remove", rights.remove, where))
            return false;
        for (pugi::xml_node user = table.child("user"); user; user = user.next_sibling("user"))
        {
            if (QString::fromUtf8(user.attribute("name").value()) != user_name)
                continue;
            if (!read_flag(error, user, "add", rights.add, where) ||
                !read_flag(error, user, "edit", rights.edit, where) ||
                !read_flag(error, user, "remove", rights.remove, where))
                return false;
        }
        m_tables.insert(name, rights);
    }
    return true;
}
