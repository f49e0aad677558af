#include "sample_form_files.h"

#include "sample_project_files.h"

#include <QDir>
#include <QXmlStreamWriter>

#include <functional>

namespace
{
typedef std::function<void(QXmlStreamWriter& xml)> BODY;

void element(QXmlStreamWriter& xml, const QString& name, const QString& text)
{
    xml.writeTextElement(name, text);
}

void named(QXmlStreamWriter& xml, const QString& name, const QString& attribute, const QString& text)
{
    xml.writeStartElement(name);
    xml.writeAttribute(QStringLiteral("name"), attribute);
    xml.writeCharacters(text);
    xml.writeEndElement();
}

void block(QXmlStreamWriter& xml, const QString& name, const BODY& body)
{
    xml.writeStartElement(name);
    body(xml);
    xml.writeEndElement();
}

void groupbox(QXmlStreamWriter& xml, const QString& title, const BODY& body)
{
    block(xml, QStringLiteral("groupbox"), [&](QXmlStreamWriter& inner) {
        element(inner, QStringLiteral("title"), title);
        body(inner);
    });
}

void units(QXmlStreamWriter& xml)
{
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "unit");
        element(xml, "table_name", "main_units");
        xml.writeEmptyElement("base_node");
        element(xml, "record_switching", "dropdown");
        block(xml, "rows", [](QXmlStreamWriter& xml) {
            groupbox(xml, "Unit", [](QXmlStreamWriter& xml) {
                block(xml, "columns", [](QXmlStreamWriter& xml) {
                    element(xml, "static_text_field", "unit");
                    element(xml, "combo_box_field", "land_unit");
                    element(xml, "combo_box_field", "culture");
                    element(xml, "combo_box_field", "weight");
                });
            });
            groupbox(xml, "Recruitment", [](QXmlStreamWriter& xml) {
                block(xml, "columns", [](QXmlStreamWriter& xml) {
                    named(xml, "text_edit_field", "cost", "cost");
                    named(xml, "text_edit_field", "upkeep", "upkeep_cost");
                    named(xml, "eval", "upkeep_share", "upkeep / cost * 100");
                    element(xml, "text_edit_field", "tier");
                    element(xml, "check_box_field", "recruitable");
                    element(xml, "check_box_field", "is_naval");
                    xml.writeEmptyElement("spacer");
                });
            });
            element(xml, "button_export_to_excel", "Copy unit as excel");
        });
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "factions_of_unit");
        element(xml, "table_name", "units_to_factions");
        element(xml, "parent_table", "unit");
        element(xml, "parent_field", "unit");
        element(xml, "filter_field", "unit");
        xml.writeEmptyElement("junction_table");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            block(xml, "edit_grid", [](QXmlStreamWriter& xml) {
                named(xml, "edit_grid_column", "faction", "Faction");
                named(xml, "edit_grid_column", "allowed", "Allowed");
                named(xml, "edit_grid_column", "exclusive", "Exclusive");
            });
            xml.writeEmptyElement("junction_new_button");
        });
    });
}

void factions(QXmlStreamWriter& xml)
{
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "table_name", "factions");
        xml.writeEmptyElement("base_node");
        element(xml, "record_switching", "true");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            block(xml, "rows", [](QXmlStreamWriter& xml) {
                element(xml, "static_text_field", "key");
                element(xml, "text_edit_field", "screen_name");
                element(xml, "combo_box_field", "culture");
                element(xml, "combo_box_field", "horde_type");
                element(xml, "check_box_field", "is_rebel");
            });
            groupbox(xml, "Colour", [](QXmlStreamWriter& xml) {
                block(xml, "rows", [](QXmlStreamWriter& xml) {
                    named(xml, "text_edit_field", "red", "primary_colour_r");
                    named(xml, "text_edit_field", "green", "primary_colour_g");
                    named(xml, "text_edit_field", "blue", "primary_colour_b");
                    named(xml, "eval", "brightness", "(red + green + blue) / 3");
                });
            });
        });
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "start_positions");
        element(xml, "table_name", "start_pos_factions");
        element(xml, "parent_table", "factions");
        element(xml, "parent_field", "key");
        element(xml, "filter_field", "faction");
        xml.writeEmptyElement("read_only");
        block(xml, "edit_grid", [](QXmlStreamWriter& xml) {
            named(xml, "edit_grid_column", "campaign", "Campaign");
            named(xml, "edit_grid_column", "playable", "Playable");
            named(xml, "edit_grid_column", "treasury", "Treasury");
        });
    });
}

void buildings(QXmlStreamWriter& xml)
{
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "chain");
        element(xml, "table_name", "building_chains");
        xml.writeEmptyElement("base_node");
        element(xml, "record_switching", "0");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            element(xml, "static_text_field", "key");
            element(xml, "text_edit_field", "onscreen_name");
            element(xml, "combo_box_field", "category");
        });
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "levels");
        element(xml, "table_name", "building_levels");
        element(xml, "parent_table", "chain");
        element(xml, "parent_field", "key");
        element(xml, "filter_field", "chain");
        block(xml, "edit_grid", [](QXmlStreamWriter& xml) {
            named(xml, "edit_grid_column", "key", "Key");
            named(xml, "edit_grid_column", "level", "Level");
            named(xml, "memo_grid_column", "onscreen_name", "Name");
            named(xml, "edit_grid_column", "cost", "Cost");
            named(xml, "edit_grid_column", "turns", "Turns");
            named(xml, "edit_grid_column", "required_technology", "Technology");
        });
        xml.writeEmptyElement("new_button");
    });
}

void start_positions(QXmlStreamWriter& xml)
{
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "campaign");
        element(xml, "table_name", "campaigns");
        xml.writeEmptyElement("base_node");
        element(xml, "record_switching", "dropdown");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            element(xml, "static_text_field", "campaign_name");
            element(xml, "text_edit_field", "onscreen_name");
            named(xml, "text_edit_field", "start", "start_year");
            named(xml, "text_edit_field", "turns", "turns_per_year");
            named(xml, "eval", "years_in_100_turns", "100 / turns");
            element(xml, "check_box_field", "playable");
        });
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "factions");
        element(xml, "table_name", "start_pos_factions");
        element(xml, "parent_table", "campaign");
        element(xml, "parent_field", "campaign_name");
        element(xml, "filter_field", "campaign");
        element(xml, "record_switching", "true");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            element(xml, "combo_box_field", "faction");
            element(xml, "check_box_field", "playable");
            element(xml, "text_edit_field", "treasury");
        });
        xml.writeEmptyElement("new_button");
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "armies");
        element(xml, "table_name", "start_pos_armies");
        element(xml, "parent_table", "factions");
        element(xml, "parent_field", "ID");
        element(xml, "filter_field", "faction");
        element(xml, "record_switching", "true");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            element(xml, "static_text_field", "key");
            element(xml, "text_edit_field", "army_name");
            block(xml, "filtered_combo_box", [](QXmlStreamWriter& xml) {
                xml.writeStartElement("section_link_filter");
                xml.writeAttribute("filter_field", "faction");
                xml.writeAttribute("match_table", "start_pos_characters");
                xml.writeAttribute("match_field", "faction");
                xml.writeEndElement();
                element(xml, "combo_box_field", "general");
            });
        });
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "army_units");
        element(xml, "table_name", "start_pos_army_units");
        element(xml, "parent_table", "armies");
        element(xml, "parent_field", "key");
        element(xml, "filter_field", "army");
        block(xml, "edit_grid", [](QXmlStreamWriter& xml) {
            named(xml, "edit_grid_column", "unit", "Unit");
            named(xml, "edit_grid_column", "experience", "Experience");
            named(xml, "edit_grid_column", "strength", "Strength");
        });
        xml.writeEmptyElement("new_button");
    });
}

void advice(QXmlStreamWriter& xml)
{
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "thread");
        element(xml, "table_name", "advice_threads");
        xml.writeEmptyElement("base_node");
        element(xml, "record_switching", "true");
        groupbox(xml, "Advice", [](QXmlStreamWriter& xml) {
            element(xml, "static_text_field", "key");
            element(xml, "text_edit_field", "title");
            element(xml, "memo_edit_field", "text");
            element(xml, "text_edit_field", "priority");
        });
    });
    block(xml, "subform_table", [](QXmlStreamWriter& xml) {
        element(xml, "subform_name", "triggers");
        element(xml, "table_name", "advice_triggers");
        element(xml, "parent_table", "thread");
        element(xml, "parent_field", "key");
        element(xml, "filter_field", "advice_thread");
        xml.writeEmptyElement("use_parent_groupbox");
        block(xml, "edit_grid", [](QXmlStreamWriter& xml) {
            named(xml, "edit_grid_column", "key", "Trigger");
            named(xml, "edit_grid_column", "event", "Event");
            named(xml, "memo_grid_column", "condition", "Condition");
            named(xml, "edit_grid_column", "once_per_campaign", "Once");
        });
        xml.writeEmptyElement("new_button");
    });
}

struct FORM
{
    const char* name;
    void (*body)(QXmlStreamWriter&);
};

const FORM FORMS[] = {{"Units", units},
                      {"Factions", factions},
                      {"Buildings", buildings},
                      {"StartPositions", start_positions},
                      {"Advice", advice}};

QString write_file(const QString& path, const std::function<void(QXmlStreamWriter&)>& content)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    content(xml);
    xml.writeEndDocument();
    return SAMPLE_PROJECT_FILES::write_file(path, bytes);
}
} // namespace

QStringList SAMPLE_FORM_FILES::form_names()
{
    QStringList names;
    for (const FORM& form : FORMS)
        names.append(QString::fromLatin1(form.name));
    return names;
}

QString SAMPLE_FORM_FILES::write(const QString& database_path)
{
    const QDir folder(database_path);
    QString error =
        write_file(folder.filePath(QStringLiteral("Veld_form_descriptions.xml")), [](QXmlStreamWriter& xml) {
            xml.writeStartElement(QStringLiteral("form_descriptions"));
            for (const FORM& form : FORMS)
                xml.writeTextElement(QStringLiteral("form_name"), QString::fromLatin1(form.name));
            xml.writeEndElement();
        });
    for (const FORM& form : FORMS)
    {
        if (!error.isEmpty())
            break;
        error =
            write_file(folder.filePath(QStringLiteral("VeldFORMDESCR_%1.xml").arg(form.name)),
                       [&form](QXmlStreamWriter& xml) {
                           xml.writeStartElement(QStringLiteral("form"));
                           xml.writeTextElement(QStringLiteral("form_name"), QString::fromLatin1(form.name));
                           form.body(xml);
                           xml.writeEndElement();
                       });
    }
    return error;
}
