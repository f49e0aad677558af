#pragma once

#include <QItemDelegate>
#include <QMap>
#include <QStringList>
#include <QVector>

#include <functional>

class KOR_FIELD_SCHEMA;
class KOR_TABLE_DATA;
class VELD_DATA;
class VELD_FILTER_ROW;
class VELD_TABLE_DATA_VIEW_SORT_MODEL;

// How a cell of the table data editor is painted and which editor opens on
// it: a check box for yes/no fields, a narrowing dropdown for fields with
// fixed values, lookups or a dependency, a line edit for the rest.
//
// Dropdown contents are fetched once for the whole table (load_lookups) and
// narrowed at each opening by the editor's dropdown filters.
class VELD_TABLE_DATA_VIEW_DELEGATE : public QItemDelegate
{
    Q_OBJECT

public:
    using FILTER_ROWS = std::function<QList<const VELD_FILTER_ROW*>()>;

    VELD_TABLE_DATA_VIEW_DELEGATE(VELD_DATA* session, VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy,
                                  QObject* parent = nullptr);
    ~VELD_TABLE_DATA_VIEW_DELEGATE() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

    // Fetches the choices of every lookup and dependency field of the table.
    // A field whose fetch fails gets no list; the last failure's text stays
    // in `error`, and the answer is whether there was none.
    bool load_lookups(QString& error);

    // The editor's dropdown filter rows, read at each opening of a dropdown.
    template <typename ROW> void set_dropdown_filters(const QList<ROW*>* rows)
    {
        m_dropdown_filters = [rows]() {
            QList<const VELD_FILTER_ROW*> result;
            if (rows)
                for (const ROW* row : *rows)
                    result.append(row);
            return result;
        };
    }
    void set_dropdown_filter_rows(const FILTER_ROWS& rows) { m_dropdown_filters = rows; }

    // "Lookup Values" shows display texts in dropdowns; "Underlying" the values.
    bool dropdown_shows_display_text() const { return m_dropdown_shows_display_text; }
    void set_dropdown_shows_display_text(bool display_text) { m_dropdown_shows_display_text = display_text; }

    // The table the delegate serves; its schema gives the fields.
    void set_table_data(const KOR_TABLE_DATA* table_data) { m_table_data = table_data; }

    // What load_lookups fetched, by field name.
    const QMap<QString, QVector<QVariant>>& lookup_values() const { return m_lookup_values; }
    const QMap<QString, QStringList>& lookup_texts() const { return m_lookup_texts; }
    const QMap<QString, QVector<QVariant>>& dependency_values() const { return m_dependency_values; }
    const QMap<QString, QStringList>& dependency_texts() const { return m_dependency_texts; }

signals:
    void statusUpdate(QString updateString);
    void cellEdited(const QString& value);

private:
    const KOR_FIELD_SCHEMA* field_of_column(int column) const;
    // Whether a text passes every dropdown filter set on the field.
    std::function<bool(const QString&)> filter_test(const QString& field_name) const;

    QMap<QString, QVector<QVariant>> m_lookup_values;
    QMap<QString, QStringList> m_lookup_texts;
    QMap<QString, QVector<QVariant>> m_dependency_values;
    QMap<QString, QStringList> m_dependency_texts;
    FILTER_ROWS m_dropdown_filters;
    const KOR_TABLE_DATA* m_table_data = nullptr;
    VELD_DATA* m_session;
    VELD_TABLE_DATA_VIEW_SORT_MODEL* m_proxy;
    bool m_dropdown_shows_display_text = true;
};
