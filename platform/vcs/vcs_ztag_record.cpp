#include "vcs_ztag_record.h"

namespace
{
const QLatin1String field_prefix("... ");

bool is_field_line(const QString& line)
{
    return line.startsWith(field_prefix) && line.size() > field_prefix.size();
}
} // namespace

void VCS_ZTAG_RECORD::set(const QString& key, const QString& value)
{
    for (auto& field : fields)
    {
        if (field.first == key)
        {
            field.second = value;
            return;
        }
    }
    fields.append(qMakePair(key, value));
}

QString VCS_ZTAG_RECORD::value(const QString& key, const QString& fallback) const
{
    for (const auto& field : fields)
    {
        if (field.first == key)
            return field.second;
    }
    return fallback;
}

int VCS_ZTAG_RECORD::int_value(const QString& key, int fallback) const
{
    bool ok = false;
    const int number = value(key).trimmed().toInt(&ok);
    return ok ? number : fallback;
}

bool VCS_ZTAG_RECORD::contains(const QString& key) const
{
    for (const auto& field : fields)
    {
        if (field.first == key)
            return true;
    }
    return false;
}

QStringList VCS_ZTAG_RECORD::to_lines() const
{
    QStringList lines;
    for (const auto& field : fields)
    {
        const QStringList parts = field.second.split(QLatin1Char('\n'));
        lines.append(field_prefix + field.first + QLatin1Char(' ') + parts.first());
        for (int i = 1; i < parts.size(); ++i)
            lines.append(parts.at(i));
    }
    return lines;
}

QStringList VCS_ZTAG_RECORD::to_lines(const QVector<VCS_ZTAG_RECORD>& records)
{
    QStringList lines;
    for (const VCS_ZTAG_RECORD& record : records)
    {
        lines += record.to_lines();
        lines.append(QString());
    }
    return lines;
}

QVector<VCS_ZTAG_RECORD> VCS_ZTAG_RECORD::parse(const QStringList& lines, QStringList* untagged)
{
    QVector<VCS_ZTAG_RECORD> records;
    VCS_ZTAG_RECORD current;
    QString last_key;
    int pending_blank_lines = 0;

    auto finish = [&]() {
        if (!current.isEmpty())
            records.append(current);
        current = VCS_ZTAG_RECORD();
        last_key.clear();
    };

    for (const QString& line : lines)
    {
        if (line.trimmed().isEmpty())
        {
            ++pending_blank_lines;
            continue;
        }
        if (is_field_line(line))
        {
            const QString body = line.mid(field_prefix.size());
            const int space = body.indexOf(QLatin1Char(' '));
            const QString key = space < 0 ? body : body.left(space);
            const QString value = space < 0 ? QString() : body.mid(space + 1);
            // Descriptions end in a newline, which the client prints as a
            // blank line before the next field of the same record.
            const bool description_end = last_key.endsWith(QLatin1String("desc"), Qt::CaseInsensitive) ||
                                         last_key.startsWith(QLatin1String("desc"));
            if ((pending_blank_lines > 0 && !description_end) || current.contains(key))
                finish();
            pending_blank_lines = 0;
            current.set(key, value);
            last_key = key;
            continue;
        }
        // An untagged line: the continuation of a multi-line value when a
        // record is open, otherwise a message of the client.
        if (!last_key.isEmpty())
        {
            QString value = current.value(last_key);
            for (int i = 0; i < pending_blank_lines; ++i)
                value += QLatin1Char('\n');
            value += QLatin1Char('\n') + line;
            current.set(last_key, value);
        }
        else if (untagged)
        {
            untagged->append(line);
        }
        pending_blank_lines = 0;
    }
    finish();
    return records;
}
