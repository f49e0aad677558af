#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QPair>
#include <QSet>
#include <QString>

class VELD_DATA;

// The tables of the connected database for the table launcher: one row a
// table, column 0 its key, column 1 whether the user pinned it.
//
// Pins persist in the settings ("PinnedTables", array "TableKeys", value "key").
class TABLE_LAUNCHER_MODEL : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit TABLE_LAUNCHER_MODEL(VELD_DATA* session, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    // Fills the rows from the database schema, in its order, with the pins
    // read from the settings; inside a model reset.
    void fill();
    // Reloads the rows inside a model reset (after a removal or a new table).
    void refresh();

    QString table_key(int row) const;
    bool is_pinned(int row) const;
    void toggle_pinned(int row);

    // The pinned table keys in row order, as written to the settings.
    QStringList pinned_keys() const;
    void write_pinned() const;
    static QSet<QString> read_pinned();

    // The order both launcher lists share: pinned rows first, then by key
    // ignoring case. Indexes of this model, any column of the row.
    bool row_less_than(int left_row, int right_row) const;

private:
    void load_rows();

    QList<QPair<QString, bool>> m_rows;
    VELD_DATA* m_session;
};
