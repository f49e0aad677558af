#include "veld_table_data_view_delegate.h"

#include "veld_clipboard_text.h"

#include "filtered_dropdown_combo_box.h"
#include "kor_field_schema.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "veld_data.h"
#include "veld_dropdown_items.h"
#include "veld_filter_row.h"
#include "veld_table_data_view_model.h"
#include "veld_table_data_view_sort_model.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPainter>

using QTSHARED::FilteredDropdownComboBox;

VELD_TABLE_DATA_VIEW_DELEGATE::VELD_TABLE_DATA_VIEW_DELEGATE(VELD_DATA* session,
                                                             VELD_TABLE_DATA_VIEW_SORT_MODEL* proxy,
                                                             QObject* parent)
    : QItemDelegate(parent), m_session(session), m_proxy(proxy)
{
}

VELD_TABLE_DATA_VIEW_DELEGATE::~VELD_TABLE_DATA_VIEW_DELEGATE() = default;

bool VELD_TABLE_DATA_VIEW_DELEGATE::load_lookups(QString& error)
{
    m_lookup_values.clear();
    m_lookup_texts.clear();
    m_dependency_values.clear();
    m_dependency_texts.clear();
    const KOR_TABLE_SCHEMA* schema = m_table_data ? m_table_data->table_schema() : nullptr;
    if (!schema || !m_session)
        return error.isEmpty();
    for (const QString& name : schema->column_ordering())
    {
        const KOR_FIELD_SCHEMA* field = schema->field_schema_by_name(name);
        if (!field)
            continue;
        if (field->dependency())
        {
            QString fetch_error;
            QVector<QVariant> values;
            if (m_session->get_main_dependency_field_data(fetch_error, values, field))
            {
                QStringList texts;
                texts.reserve(values.size());
                for (const QVariant& value : qAsConst(values))
                    texts << value.toString();
                m_dependency_values.insert(name, values);
                m_dependency_texts.insert(name, texts);
            }
            else if (!fetch_error.isEmpty())
                error = fetch_error;
        }
        if (!field->source_table().isEmpty() && !field->lookup_fields().isEmpty())
        {
            QString fetch_error;
            QVector<QVariant> values;
            QList<QString> texts;
            if (m_session->get_field_lookup_values(fetch_error, values, texts, field))
            {
                m_lookup_values.insert(name, values);
                m_lookup_texts.insert(name, texts);
            }
            else if (!fetch_error.isEmpty())
                error = fetch_error;
        }
    }
    return error.isEmpty();
}

const KOR_FIELD_SCHEMA* VELD_TABLE_DATA_VIEW_DELEGATE::field_of_column(int column) const
{
    const KOR_TABLE_SCHEMA* schema = m_table_data ? m_table_data->table_schema() : nullptr;
    if (!schema || !m_proxy)
        return nullptr;
    const QString name = m_proxy->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    return schema->field_schema_by_name(name);
}

std::function<bool(const QString&)>
VELD_TABLE_DATA_VIEW_DELEGATE::filter_test(const QString& field_name) const
{
    QList<const VELD_FILTER_ROW*> rows;
    const KOR_TABLE_SCHEMA* schema = m_table_data ? m_table_data->table_schema() : nullptr;
    if (m_dropdown_filters && schema)
    {
        for (const VELD_FILTER_ROW* row : m_dropdown_filters())
        {
            if (row && schema->column_ordering().value(row->filter_column()) == field_name)
                rows.append(row);
        }
    }
    return [rows](const QString& text) {
        for (const VELD_FILTER_ROW* row : rows)
        {
            if (!row->test(text))
                return false;
        }
        return true;
    };
}

void VELD_TABLE_DATA_VIEW_DELEGATE::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                          const QModelIndex& index) const
{
    const QVariant colour = index.data(Qt::DecorationRole);
    if (colour.canConvert<QColor>() && colour.value<QColor>().isValid())
    {
        painter->save();
        painter->fillRect(option.rect, QBrush(colour.value<QColor>()));
        painter->setPen(option.palette.color(QPalette::Text));
        // The same text the uncoloured cells show: a float as its shortest
        // text, not the digits of its conversion to double.
        painter->drawText(option.rect.adjusted(4, 6, -4, -6), Qt::AlignLeft | Qt::AlignVCenter,
                          VELD_CLIPBOARD_TEXT::cell_text(index.data(Qt::DisplayRole)));
        painter->restore();
        return;
    }
    QItemDelegate::paint(painter, option, index);
}

QSize VELD_TABLE_DATA_VIEW_DELEGATE::sizeHint(const QStyleOptionViewItem& option,
                                              const QModelIndex& index) const
{
    return QItemDelegate::sizeHint(option, index);
}

QWidget* VELD_TABLE_DATA_VIEW_DELEGATE::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                                     const QModelIndex& index) const
{
    Q_UNUSED(option)
    const VELD_TABLE_DATA_VIEW_MODEL* model = m_proxy ? m_proxy->table_model() : nullptr;
    // The row number of the view's index is tested as it stands, as the
    // editor always did.
    if (!model || model->is_deleted_row(index.row()))
        return nullptr;
    const KOR_FIELD_SCHEMA* field = field_of_column(index.column());
    if (!field)
        return nullptr;
    const QString& name = field->field_name();

    QWidget* editor = nullptr;
    if (field->field_type() == KFT_YESNO)
    {
        editor = new QCheckBox(parent);
    }
    else if (!field->fixed_column_values().isEmpty() || !field->lookup_fields().isEmpty() ||
             field->dependency())
    {
        QVector<VELD_DROPDOWN_ITEMS::ITEM> items;
        if (!field->fixed_column_values().isEmpty())
            items = VELD_DROPDOWN_ITEMS::from_fixed_values(field->fixed_column_values(), field->is_required(),
                                                           filter_test(name));
        else if (!field->lookup_fields().isEmpty())
        {
            const auto values = m_lookup_values.constFind(name);
            const auto texts = m_lookup_texts.constFind(name);
            items = VELD_DROPDOWN_ITEMS::from_pairs(
                values != m_lookup_values.constEnd() ? &values.value() : nullptr,
                texts != m_lookup_texts.constEnd() ? &texts.value() : nullptr, field->is_required(),
                m_dropdown_shows_display_text, filter_test(name));
        }
        else
        {
            const auto values = m_dependency_values.constFind(name);
            const auto texts = m_dependency_texts.constFind(name);
            items = VELD_DROPDOWN_ITEMS::from_pairs(
                values != m_dependency_values.constEnd() ? &values.value() : nullptr,
                texts != m_dependency_texts.constEnd() ? &texts.value() : nullptr, field->is_required(),
                m_dropdown_shows_display_text, filter_test(name));
        }
        auto* box = new FilteredDropdownComboBox(parent);
        for (const VELD_DROPDOWN_ITEMS::ITEM& item : qAsConst(items))
            box->addItem(item.text, item.value);
        editor = box;
    }
    else
    {
        auto* line = new QLineEdit(parent);
        connect(line, &QLineEdit::textEdited, this, &VELD_TABLE_DATA_VIEW_DELEGATE::cellEdited);
        editor = line;
    }
    editor->setAutoFillBackground(true);
    return editor;
}

void VELD_TABLE_DATA_VIEW_DELEGATE::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QVariant value = index.data(Qt::EditRole);
    if (auto* box = qobject_cast<QCheckBox*>(editor))
    {
        box->setChecked(value.toBool());
    }
    else if (auto* combo = qobject_cast<FilteredDropdownComboBox*>(editor))
    {
        const QString text = value.toString();
        int found = -1;
        for (int item = 0; item < combo->count() && found < 0; ++item)
        {
            if (combo->itemData(item).toString() == text)
                found = item;
        }
        if (found >= 0)
            combo->setCurrentIndex(found);
        else
        {
            // A value the list does not offer (filtered out, or stale) must
            // not be swapped silently for the first choice when the editor
            // merely closes: nothing is chosen, and nothing is written.
            combo->setCurrentIndex(-1);
            combo->lineEdit()->setText(index.data(Qt::DisplayRole).toString());
        }
        combo->lineEdit()->selectAll();
    }
    else if (auto* line = qobject_cast<QLineEdit*>(editor))
    {
        const QString text = value.toString();
        line->setText(text);
        line->setSelection(0, text.size() - 1);
    }
}

void VELD_TABLE_DATA_VIEW_DELEGATE::setModelData(QWidget* editor, QAbstractItemModel* model,
                                                 const QModelIndex& index) const
{
    if (!field_of_column(index.column()))
        return;
    if (auto* box = qobject_cast<QCheckBox*>(editor))
    {
        model->setData(index, box->isChecked(), Qt::EditRole);
    }
    else if (auto* combo = qobject_cast<FilteredDropdownComboBox*>(editor))
    {
        // What the user typed chooses an item first; typed text that chooses
        // none, or an editor closed without a choice, changes nothing.
        const int chosen =
            combo->lineEdit()->isModified() ? combo->resolve_typed_text() : combo->currentIndex();
        if (chosen >= 0)
            model->setData(index, combo->itemData(chosen, Qt::UserRole), Qt::EditRole);
    }
    else if (auto* line = qobject_cast<QLineEdit*>(editor))
    {
        model->setData(index, line->text(), Qt::EditRole);
    }
}

void VELD_TABLE_DATA_VIEW_DELEGATE::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                                         const QModelIndex& index) const
{
    Q_UNUSED(index)
    editor->setGeometry(option.rect);
}
