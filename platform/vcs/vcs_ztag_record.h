#pragma once

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

// One record of the tagged ("-ztag") output of the depot client: named
// fields in the order they were written. Field order is kept so that the
// text written back out is stable.
class VCS_ZTAG_RECORD
{
public:
    void set(const QString& key, const QString& value);
    void set(const QString& key, int value) { set(key, QString::number(value)); }
    QString value(const QString& key, const QString& fallback = QString()) const;
    int int_value(const QString& key, int fallback = 0) const;
    bool contains(const QString& key) const;
    bool isEmpty() const { return fields.isEmpty(); }
    const QVector<QPair<QString, QString>>& all() const { return fields; }

    // "... key value" lines; continuation lines of multi-line values follow as they are.
    QStringList to_lines() const;

    // Splits tagged output into records. A record ends at a blank line that is
    // followed by a field line (unless the blank line ends a description), or
    // where a field name repeats. Lines before the
    // first field line and other untagged lines are returned in untagged.
    static QVector<VCS_ZTAG_RECORD> parse(const QStringList& lines, QStringList* untagged = nullptr);
    static QStringList to_lines(const QVector<VCS_ZTAG_RECORD>& records);

private:
    QVector<QPair<QString, QString>> fields;
};
