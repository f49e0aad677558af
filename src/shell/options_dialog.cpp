#include "options_dialog.h"

#include "orbin_settings.h"
#include "prompt.h"
#include "veld_form_type.h"
#include "veld_options.h"
#include "veld_window_registry.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QVBoxLayout>

namespace
{
// Which page shows which colours, by colour key.
const QStringList TABLE_COLOURS = {"cell_back_colour",        "cell_alternate_back_colour",
                                   "frozen_cell_back_colour", "frozen_cell_alternate_back_colour",
                                   "cell_text_colour",        "frozen_cell_text_colour",
                                   "altered_cell_colour",     "new_cell_colour"};
const QStringList DIFF_COLOURS = {"differs_colour", "only_in_db_1_colour", "only_in_db_2_colour"};
const QStringList WINDOW_COLOURS = {"window_back_colour"};
} // namespace

OPTIONS_DIALOG::OPTIONS_DIALOG(QWidget* parent) : VELD_MDI_DIALOG(form_name(), parent)
{
    setObjectName(QStringLiteral("optionsDialog"));
    setWindowTitle(QStringLiteral("Preferences"));

    ORBIN_SETTINGS settings(VELD_OPTIONS::organisation_path());
    settings.beginGroup(VELD_OPTIONS::group());

    auto* tabs = new QTabWidget(this);
    auto add_page = [&](const QString& title, const QStringList& colour_keys, bool with_apply) {
        auto* page = new QWidget(tabs);
        auto* grid = new QGridLayout(page);
        int line = 0;
        for (const QString& colour_key : colour_keys)
        {
            for (const VELD_OPTIONS::COLOUR_OPTION& option : VELD_OPTIONS::colour_options())
            {
                if (option.colour_key != colour_key)
                    continue;
                ROW row;
                row.default_key = option.default_key;
                row.colour_key = option.colour_key;
                row.box = new QCheckBox(QStringLiteral("Default"), page);
                row.box->setObjectName(option.colour_key + QStringLiteral("_default"));
                row.button = new QPushButton(page);
                row.button->setObjectName(option.colour_key + QStringLiteral("_button"));
                row.button->setFixedWidth(60);
                // The rows keep their shape while a colour is on its default.
                QSizePolicy policy = row.button->sizePolicy();
                policy.setRetainSizeWhenHidden(true);
                row.button->setSizePolicy(policy);
                row.colour = VELD_OPTIONS::read_colour(settings, option.colour_key);
                row.box->setChecked(settings.value(option.default_key, true).toBool());
                row.button->setVisible(!row.box->isChecked());
                grid->addWidget(new QLabel(option.label, page), line, 0);
                grid->addWidget(row.button, line, 1);
                grid->addWidget(row.box, line, 2);
                ++line;
                m_rows << row;
                show_colour(m_rows.last());
            }
        }
        if (with_apply)
        {
            auto* apply_button = new QPushButton(QStringLiteral("Apply"), page);
            apply_button->setObjectName(title == QLatin1String("Database Diff")
                                            ? QStringLiteral("diffApplyButton")
                                            : QStringLiteral("tablesApplyButton"));
            connect(apply_button, &QPushButton::clicked, this, [this] { apply(); });
            grid->addWidget(apply_button, line++, 2);
        }
        grid->setRowStretch(line, 1);
        grid->setColumnStretch(0, 1);
        tabs->addTab(page, title);
        return grid;
    };
    add_page(QStringLiteral("Tables/Lists"), TABLE_COLOURS, true);
    add_page(QStringLiteral("Database Diff"), DIFF_COLOURS, true);

    auto* check_in = new QWidget(tabs);
    auto* check_in_layout = new QVBoxLayout(check_in);
    m_auto_submit_lua = new QCheckBox(QStringLiteral("Automatically Submit LUA Files"), check_in);
    m_auto_submit_lua->setObjectName(QStringLiteral("auto_submit_lua"));
    m_auto_submit_lua->setChecked(settings.value(VELD_OPTIONS::auto_submit_lua_key(), false).toBool());
    m_auto_submit_start_pos = new QCheckBox(QStringLiteral("Automatically Submit Start Pos Files"), check_in);
    m_auto_submit_start_pos->setObjectName(QStringLiteral("auto_submit_start_pos"));
    m_auto_submit_start_pos->setChecked(
        settings.value(VELD_OPTIONS::auto_submit_start_pos_key(), false).toBool());
    check_in_layout->addWidget(m_auto_submit_lua);
    check_in_layout->addWidget(m_auto_submit_start_pos);
    check_in_layout->addStretch(1);
    tabs->addTab(check_in, QStringLiteral("Check-in"));

    add_page(QStringLiteral("Main Window"), WINDOW_COLOURS, false);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &OPTIONS_DIALOG::on_accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    setMinimumWidth(520);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);

    const struct
    {
        const char* colour_key;
        const char* default_slot;
        const char* pick_slot;
    } wiring[] = {
        {"cell_back_colour", SLOT(on_cell_back_colour_default(int)), SLOT(on_cell_back_colour_pick())},
        {"cell_alternate_back_colour", SLOT(on_cell_alternate_back_colour_default(int)),
         SLOT(on_cell_alternate_back_colour_pick())},
        {"frozen_cell_back_colour", SLOT(on_frozen_cell_back_colour_default(int)),
         SLOT(on_frozen_cell_back_colour_pick())},
        {"frozen_cell_alternate_back_colour", SLOT(on_frozen_cell_alternate_back_colour_default(int)),
         SLOT(on_frozen_cell_alternate_back_colour_pick())},
        {"cell_text_colour", SLOT(on_cell_text_colour_default(int)), SLOT(on_cell_text_colour_pick())},
        {"frozen_cell_text_colour", SLOT(on_frozen_cell_text_colour_default(int)),
         SLOT(on_frozen_cell_text_colour_pick())},
        {"window_back_colour", SLOT(on_window_back_default(int)), SLOT(on_window_back_colour_pick())},
        {"altered_cell_colour", SLOT(on_altered_cell_colour_default(int)),
         SLOT(on_altered_cell_colour_pick())},
        {"new_cell_colour", SLOT(on_new_cell_colour_default(int)), SLOT(on_new_cell_colour_pick())},
        {"differs_colour", SLOT(on_differs_colour_default(int)), SLOT(on_differs_colour_pick())},
        {"only_in_db_1_colour", SLOT(on_db_1_only_colour_default(int)), SLOT(on_db_1_only_colour_pick())},
        {"only_in_db_2_colour", SLOT(on_db_2_only_colour_default(int)), SLOT(on_db_2_only_colour_pick())},
    };
    for (const auto& wire : wiring)
    {
        const ROW& row = m_rows[row_of(QString::fromLatin1(wire.colour_key))];
        connect(row.box, SIGNAL(stateChanged(int)), this, wire.default_slot);
        connect(row.button, SIGNAL(clicked()), this, wire.pick_slot);
    }
    connect(m_auto_submit_lua, SIGNAL(stateChanged(int)), this, SLOT(on_auto_submit_lua(int)));
    connect(m_auto_submit_start_pos, SIGNAL(stateChanged(int)), this, SLOT(on_auto_submit_start_pos(int)));
}

int OPTIONS_DIALOG::row_of(const QString& colour_key) const
{
    for (int row = 0; row < m_rows.size(); ++row)
    {
        if (m_rows[row].colour_key == colour_key)
            return row;
    }
    return -1;
}

QCheckBox* OPTIONS_DIALOG::default_box(const QString& colour_key) const
{
    const int row = row_of(colour_key);
    return row < 0 ? nullptr : m_rows[row].box;
}

QPushButton* OPTIONS_DIALOG::colour_button(const QString& colour_key) const
{
    const int row = row_of(colour_key);
    return row < 0 ? nullptr : m_rows[row].button;
}

QColor OPTIONS_DIALOG::chosen_colour(const QString& colour_key) const
{
    const int row = row_of(colour_key);
    return row < 0 ? QColor() : m_rows[row].colour;
}

void OPTIONS_DIALOG::show_colour(ROW& row)
{
    row.button->setStyleSheet(QStringLiteral("QPushButton { background-color: #") +
                              VELD_OPTIONS::hex_rgb(row.colour) + QStringLiteral(" }"));
}

void OPTIONS_DIALOG::default_changed(const QString& colour_key, int state)
{
    const int row = row_of(colour_key);
    if (row >= 0)
        m_rows[row].button->setVisible(state == Qt::Unchecked);
}

void OPTIONS_DIALOG::pick(const QString& colour_key)
{
    const int index = row_of(colour_key);
    if (index < 0)
        return;
    ROW& row = m_rows[index];
    const QColor answer = prompt::get_color(row.colour, this);
    // A cancelled dialog answers an invalid colour; keeping it would store
    // black in place of the colour the user left alone.
    if (!answer.isValid())
        return;
    row.colour = answer;
    show_colour(row);
}

void OPTIONS_DIALOG::on_cell_back_colour_default(int state)
{
    default_changed(QStringLiteral("cell_back_colour"), state);
}

void OPTIONS_DIALOG::on_cell_alternate_back_colour_default(int state)
{
    default_changed(QStringLiteral("cell_alternate_back_colour"), state);
}

void OPTIONS_DIALOG::on_frozen_cell_back_colour_default(int state)
{
    default_changed(QStringLiteral("frozen_cell_back_colour"), state);
}

void OPTIONS_DIALOG::on_frozen_cell_alternate_back_colour_default(int state)
{
    default_changed(QStringLiteral("frozen_cell_alternate_back_colour"), state);
}

void OPTIONS_DIALOG::on_cell_text_colour_default(int state)
{
    default_changed(QStringLiteral("cell_text_colour"), state);
}

void OPTIONS_DIALOG::on_frozen_cell_text_colour_default(int state)
{
    default_changed(QStringLiteral("frozen_cell_text_colour"), state);
}

void OPTIONS_DIALOG::on_window_back_default(int state)
{
    default_changed(QStringLiteral("window_back_colour"), state);
}

void OPTIONS_DIALOG::on_altered_cell_colour_default(int state)
{
    default_changed(QStringLiteral("altered_cell_colour"), state);
}

void OPTIONS_DIALOG::on_new_cell_colour_default(int state)
{
    default_changed(QStringLiteral("new_cell_colour"), state);
}

// The check-in switches are stored with the rest on accept.
void OPTIONS_DIALOG::on_auto_submit_lua(int) {}

void OPTIONS_DIALOG::on_auto_submit_start_pos(int) {}

void OPTIONS_DIALOG::on_differs_colour_default(int state)
{
    default_changed(QStringLiteral("differs_colour"), state);
}

void OPTIONS_DIALOG::on_db_1_only_colour_default(int state)
{
    default_changed(QStringLiteral("only_in_db_1_colour"), state);
}

void OPTIONS_DIALOG::on_db_2_only_colour_default(int state)
{
    default_changed(QStringLiteral("only_in_db_2_colour"), state);
}

void OPTIONS_DIALOG::on_cell_back_colour_pick()
{
    pick(QStringLiteral("cell_back_colour"));
}

void OPTIONS_DIALOG::on_cell_alternate_back_colour_pick()
{
    pick(QStringLiteral("cell_alternate_back_colour"));
}

void OPTIONS_DIALOG::on_frozen_cell_back_colour_pick()
{
    pick(QStringLiteral("frozen_cell_back_colour"));
}

void OPTIONS_DIALOG::on_frozen_cell_alternate_back_colour_pick()
{
    pick(QStringLiteral("frozen_cell_alternate_back_colour"));
}

void OPTIONS_DIALOG::on_cell_text_colour_pick()
{
    pick(QStringLiteral("cell_text_colour"));
}

void OPTIONS_DIALOG::on_frozen_cell_text_colour_pick()
{
    pick(QStringLiteral("frozen_cell_text_colour"));
}

void OPTIONS_DIALOG::on_window_back_colour_pick()
{
    pick(QStringLiteral("window_back_colour"));
}

void OPTIONS_DIALOG::on_altered_cell_colour_pick()
{
    pick(QStringLiteral("altered_cell_colour"));
}

void OPTIONS_DIALOG::on_new_cell_colour_pick()
{
    pick(QStringLiteral("new_cell_colour"));
}

void OPTIONS_DIALOG::on_differs_colour_pick()
{
    pick(QStringLiteral("differs_colour"));
}

void OPTIONS_DIALOG::on_db_1_only_colour_pick()
{
    pick(QStringLiteral("only_in_db_1_colour"));
}

void OPTIONS_DIALOG::on_db_2_only_colour_pick()
{
    pick(QStringLiteral("only_in_db_2_colour"));
}

void OPTIONS_DIALOG::apply()
{
    {
        ORBIN_SETTINGS settings(VELD_OPTIONS::organisation_path());
        settings.beginGroup(VELD_OPTIONS::group());
        // The order of the options: default switches, colours, check-in.
        for (const VELD_OPTIONS::COLOUR_OPTION& option : VELD_OPTIONS::colour_options())
        {
            const int row = row_of(option.colour_key);
            if (row >= 0)
                settings.setValue(option.default_key, m_rows[row].box->isChecked());
        }
        for (const VELD_OPTIONS::COLOUR_OPTION& option : VELD_OPTIONS::colour_options())
        {
            const int row = row_of(option.colour_key);
            if (row >= 0)
                settings.setValue(option.colour_key, m_rows[row].colour);
        }
        settings.setValue(VELD_OPTIONS::auto_submit_lua_key(), m_auto_submit_lua->isChecked());
        settings.setValue(VELD_OPTIONS::auto_submit_start_pos_key(), m_auto_submit_start_pos->isChecked());
    }
    emit refreshColours();
}

void OPTIONS_DIALOG::on_accept()
{
    apply();
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.holds(form_name(), VELD_FORM_TYPE::DIALOG, this))
        registry.close_form(form_name(), VELD_FORM_TYPE::DIALOG);
    else
        accept();
}
