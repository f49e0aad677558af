#include "find_and_replace_dialog.h"

#include "orbin_settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
const char* const searches_path = "Northfold\\Quill\\Veld\\Searches";

QMap<int, QString> read_history(QSettings& settings, const QString& array, int& next_index)
{
    QMap<int, QString> history;
    next_index = 0;
    const int size = settings.beginReadArray(array);
    for (int i = 0; i < size; ++i)
    {
        settings.setArrayIndex(i);
        const QString text = settings.value(QStringLiteral("previous_string")).toString();
        const int index = settings.value(QStringLiteral("previous_index"), i).toInt();
        if (text.isEmpty())
            continue;
        history.insert(index, text);
        next_index = qMax(next_index, index + 1);
    }
    settings.endArray();
    return history;
}

void write_history(QSettings& settings, const QString& array, const QMap<int, QString>& history)
{
    settings.remove(array);
    settings.beginWriteArray(array, history.size());
    int i = 0;
    for (auto entry = history.constBegin(); entry != history.constEnd(); ++entry, ++i)
    {
        settings.setArrayIndex(i);
        settings.setValue(QStringLiteral("previous_string"), entry.value());
        settings.setValue(QStringLiteral("previous_index"), entry.key());
    }
    settings.endArray();
}

void remember(QMap<int, QString>& history, int& next_index, const QString& text)
{
    // Empty terms are no history: an empty replacement stays possible
    // without filling the list with blanks.
    if (text.isEmpty())
        return;
    for (auto entry = history.begin(); entry != history.end();)
        entry = entry.value() == text ? history.erase(entry) : entry + 1;
    history.insert(next_index++, text);
    while (history.size() > FIND_AND_REPLACE_DIALOG::history_limit)
        history.erase(history.begin());
}

void fill(QComboBox* box, const QMap<int, QString>& history)
{
    const QString typed = box->currentText();
    box->clear();
    for (auto entry = history.constEnd(); entry != history.constBegin();)
        box->addItem((--entry).value());
    box->setCurrentIndex(0);
    // What was typed stays, even when it is no entry (an empty replacement):
    // the newest entry in its place would replace with another text.
    box->setEditText(typed);
}

QComboBox* history_combo(QWidget* parent, const char* name)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::InsertAtTop);
    box->setMinimumWidth(220);
    return box;
}
} // namespace

FIND_AND_REPLACE_DIALOG::FIND_AND_REPLACE_DIALOG(const QString& table_key, const QStringList& field_names,
                                                 QWidget* parent)
    : QDialog(parent, Qt::WindowTitleHint | Qt::WindowSystemMenuHint)
{
    setObjectName(QStringLiteral("FindReplaceDialog"));
    setWindowTitle(QStringLiteral("Find And Replace - ") + table_key);

    m_search_text = history_combo(this, "searchText");
    m_replace_text = history_combo(this, "replaceText");
    m_replace_label = new QLabel(QStringLiteral("Replace Text"), this);
    m_direction = new QComboBox(this);
    m_direction->setObjectName(QStringLiteral("searchDirection"));
    const QStringList directions = {QStringLiteral("Up"), QStringLiteral("Down"), QStringLiteral("Left"),
                                    QStringLiteral("Right")};
    for (int i = 0; i < directions.size(); ++i)
        m_direction->addItem(directions[i], i);
    m_direction->setCurrentIndex(1);
    m_search_underlying = new QCheckBox(QStringLiteral("Search Underlying Values"), this);
    m_search_underlying->setObjectName(QStringLiteral("searchUnderlying"));
    m_use_search_field = new QCheckBox(QStringLiteral("Search Field"), this);
    m_use_search_field->setObjectName(QStringLiteral("useSearchField"));
    m_search_field = new QComboBox(this);
    m_search_field->setObjectName(QStringLiteral("searchField"));
    m_search_field->addItems(field_names);
    m_case_sensitive = new QCheckBox(QStringLiteral("Case Sensitive"), this);
    m_case_sensitive->setObjectName(QStringLiteral("caseSensitive"));
    m_in_selection = new QCheckBox(QStringLiteral("In Selection"), this);
    m_in_selection->setObjectName(QStringLiteral("inSelection"));

    m_find_button = new QPushButton(QStringLiteral("Find"), this);
    m_find_button->setObjectName(QStringLiteral("findButton"));
    m_find_button->setDefault(true);
    m_replace_button = new QPushButton(QStringLiteral("Replace"), this);
    m_replace_button->setObjectName(QStringLiteral("replaceButton"));
    m_replace_all_button = new QPushButton(QStringLiteral("Replace All"), this);
    m_replace_all_button->setObjectName(QStringLiteral("replaceAllButton"));
    m_cancel_button = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancel_button->setObjectName(QStringLiteral("cancelButton"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Search Text"), this), 0, 0);
    grid->addWidget(m_search_text, 0, 1, 1, 2);
    grid->addWidget(m_replace_label, 1, 0);
    grid->addWidget(m_replace_text, 1, 1, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Search Direction"), this), 2, 0);
    grid->addWidget(m_direction, 2, 1, 1, 2);
    grid->addWidget(m_search_underlying, 3, 0, 1, 3);
    grid->addWidget(m_use_search_field, 4, 0);
    grid->addWidget(m_search_field, 4, 1, 1, 2);
    grid->addWidget(m_case_sensitive, 5, 0);
    grid->addWidget(m_in_selection, 5, 1);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_find_button);
    buttons->addWidget(m_replace_button);
    buttons->addWidget(m_replace_all_button);
    buttons->addWidget(m_cancel_button);
    buttons->addStretch(1);
    grid->addLayout(buttons, 0, 3, 6, 1);

    connect(m_find_button, &QPushButton::clicked, this, &FIND_AND_REPLACE_DIALOG::on_click_search);
    connect(m_replace_button, &QPushButton::clicked, this, &FIND_AND_REPLACE_DIALOG::on_click_replace);
    connect(m_replace_all_button, &QPushButton::clicked, this,
            &FIND_AND_REPLACE_DIALOG::on_click_replace_all);
    connect(m_cancel_button, &QPushButton::clicked, this, &FIND_AND_REPLACE_DIALOG::on_click_close);
    connect(m_use_search_field, &QCheckBox::clicked, this,
            &FIND_AND_REPLACE_DIALOG::on_click_use_search_field);
    connect(m_in_selection, &QCheckBox::clicked, this, &FIND_AND_REPLACE_DIALOG::on_click_use_selection);

    load_histories();
    fill_combos();
    on_click_use_search_field();
}

FIND_AND_REPLACE_DIALOG::~FIND_AND_REPLACE_DIALOG() = default;

void FIND_AND_REPLACE_DIALOG::set_mode(MODE mode)
{
    m_mode = mode;
    const bool replacing = mode == REPLACE_MODE;
    m_replace_button->setVisible(replacing);
    m_replace_all_button->setVisible(replacing);
    m_replace_text->setVisible(replacing);
    m_replace_label->setVisible(replacing);
    setWindowTitle(replacing ? QStringLiteral("Find and Replace") : QStringLiteral("Find"));
}

bool FIND_AND_REPLACE_DIALOG::case_sensitive() const
{
    return m_case_sensitive->isChecked();
}

bool FIND_AND_REPLACE_DIALOG::in_selection() const
{
    return m_in_selection->isChecked();
}

QString FIND_AND_REPLACE_DIALOG::search_field() const
{
    return m_use_search_field->isChecked() ? m_search_field->currentText() : QString();
}

int FIND_AND_REPLACE_DIALOG::direction() const
{
    return m_direction->currentData().toInt();
}

void FIND_AND_REPLACE_DIALOG::on_click_search()
{
    emit search_next_string_instance(m_search_text->currentText(), search_field(), direction(),
                                     m_search_underlying->isChecked());
    update_histories();
}

void FIND_AND_REPLACE_DIALOG::on_click_replace()
{
    emit replace_current_or_next(m_search_text->currentText(), m_replace_text->currentText(), search_field(),
                                 direction(), m_search_underlying->isChecked());
    update_histories();
}

void FIND_AND_REPLACE_DIALOG::on_click_replace_all()
{
    emit replace_all(m_search_text->currentText(), m_replace_text->currentText(), search_field(), direction(),
                     m_search_underlying->isChecked());
    update_histories();
}

void FIND_AND_REPLACE_DIALOG::on_click_close()
{
    close();
}

void FIND_AND_REPLACE_DIALOG::on_click_use_search_field()
{
    m_search_field->setEnabled(m_use_search_field->isChecked() && !m_in_selection->isChecked());
}

void FIND_AND_REPLACE_DIALOG::on_click_use_selection()
{
    const bool in_selection = m_in_selection->isChecked();
    m_direction->setEnabled(!in_selection);
    m_use_search_field->setEnabled(!in_selection);
    on_click_use_search_field();
}

bool FIND_AND_REPLACE_DIALOG::is_replace_key(const QKeyEvent* event)
{
    if (event->matches(QKeySequence::Replace))
        return true;
    return QKeySequence::keyBindings(QKeySequence::Replace).isEmpty() && event->key() == Qt::Key_H &&
           (event->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

void FIND_AND_REPLACE_DIALOG::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Find))
        set_mode(FIND_MODE);
    else if (is_replace_key(event))
        set_mode(REPLACE_MODE);
    else
        QDialog::keyPressEvent(event);
}

void FIND_AND_REPLACE_DIALOG::load_histories()
{
    ORBIN_SETTINGS settings(QString::fromLatin1(searches_path));
    m_search_history = read_history(settings, QStringLiteral("previousSearches"), m_next_search_index);
    m_replace_history = read_history(settings, QStringLiteral("previousReplaces"), m_next_replace_index);
}

void FIND_AND_REPLACE_DIALOG::update_histories()
{
    remember(m_search_history, m_next_search_index, m_search_text->currentText());
    remember(m_replace_history, m_next_replace_index, m_replace_text->currentText());
    {
        ORBIN_SETTINGS settings(QString::fromLatin1(searches_path));
        write_history(settings, QStringLiteral("previousSearches"), m_search_history);
        write_history(settings, QStringLiteral("previousReplaces"), m_replace_history);
    }
    fill_combos();
}

void FIND_AND_REPLACE_DIALOG::fill_combos()
{
    fill(m_search_text, m_search_history);
    fill(m_replace_text, m_replace_history);
}
