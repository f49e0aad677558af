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

// A subform of the form's own records, at its top; name may be empty.
void base_subform(QXmlStreamWriter& xml, const QString& name, const QString& table, const QString& switching,
                  const BODY& body)
{
    block(xml, QStringLiteral("subform_table"), [&](QXmlStreamWriter& inner) {
        if (!name.isEmpty())
            element(inner, QStringLiteral("subform_name"), name);
        element(inner, QStringLiteral("table_name"), table);
        inner.writeEmptyElement(QStringLiteral("base_node"));
        element(inner, QStringLiteral("record_switching"), switching);
        body(inner);
    });
}

// A subform of the records of table whose filter field holds the parent's current parent field.
void child_subform(QXmlStreamWriter& xml, const QString& name, const QString& table, const QString& parent,
                   const QString& parent_field, const QString& filter_field, const BODY& body)
{
    block(xml, QStringLiteral("subform_table"), [&](QXmlStreamWriter& inner) {
        element(inner, QStringLiteral("subform_name"), name);
        element(inner, QStringLiteral("table_name"), table);
        element(inner, QStringLiteral("parent_table"), parent);
        element(inner, QStringLiteral("parent_field"), parent_field);
        element(inner, QStringLiteral("filter_field"), filter_field);
        body(inner);
    });
}

// Field nodes of one kind each: {node, field}.
void fields(QXmlStreamWriter& xml, std::initializer_list<std::pair<const char*, const char*>> nodes)
{
    for (const auto& node : nodes)
        element(xml, QLatin1String(node.first), QLatin1String(node.second));
}

// A grid of {field, title} columns; fields named in memo edit long text.
void grid(QXmlStreamWriter& xml, std::initializer_list<std::pair<const char*, const char*>> columns,
          const QStringList& memo = QStringList())
{
    block(xml, QStringLiteral("edit_grid"), [&](QXmlStreamWriter& inner) {
        for (const auto& column : columns)
        {
            const QString field = QLatin1String(column.first);
            named(inner,
                  memo.contains(field) ? QStringLiteral("memo_grid_column")
                                       : QStringLiteral("edit_grid_column"),
                  field, QLatin1String(column.second));
        }
    });
}

void units(QXmlStreamWriter& xml)
{
    base_subform(xml, "unit", "main_units", "dropdown", [](QXmlStreamWriter& xml) {
        block(xml, "rows", [](QXmlStreamWriter& xml) {
            groupbox(xml, "Unit", [](QXmlStreamWriter& xml) {
                block(xml, "columns", [](QXmlStreamWriter& xml) {
                    fields(xml, {{"static_text_field", "unit"},
                                 {"combo_box_field", "land_unit"},
                                 {"combo_box_field", "culture"},
                                 {"combo_box_field", "weight"}});
                });
            });
            groupbox(xml, "Recruitment", [](QXmlStreamWriter& xml) {
                block(xml, "columns", [](QXmlStreamWriter& xml) {
                    named(xml, "text_edit_field", "cost", "cost");
                    named(xml, "text_edit_field", "upkeep", "upkeep_cost");
                    named(xml, "eval", "upkeep_share", "upkeep / cost * 100");
                    fields(xml, {{"text_edit_field", "tier"},
                                 {"check_box_field", "recruitable"},
                                 {"check_box_field", "is_naval"}});
                    xml.writeEmptyElement("spacer");
                });
            });
            element(xml, "button_export_to_excel", "Copy unit as excel");
        });
    });
    child_subform(
        xml, "factions_of_unit", "units_to_factions", "unit", "unit", "unit", [](QXmlStreamWriter& xml) {
            xml.writeEmptyElement("junction_table");
            block(xml, "columns", [](QXmlStreamWriter& xml) {
                grid(xml, {{"faction", "Faction"}, {"allowed", "Allowed"}, {"exclusive", "Exclusive"}});
                xml.writeEmptyElement("junction_new_button");
            });
        });
}

void factions(QXmlStreamWriter& xml)
{
    base_subform(xml, QString(), "factions", "true", [](QXmlStreamWriter& xml) {
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            block(xml, "rows", [](QXmlStreamWriter& xml) {
                fields(xml, {{"static_text_field", "key"},
                             {"text_edit_field", "screen_name"},
                             {"combo_box_field", "culture"},
                             {"combo_box_field", "horde_type"},
                             {"check_box_field", "is_rebel"}});
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
    child_subform(
        xml, "start_positions", "start_pos_factions", "factions", "key", "faction",
        [](QXmlStreamWriter& xml) {
            xml.writeEmptyElement("read_only");
            grid(xml, {{"campaign", "Campaign"}, {"playable", "Playable"}, {"treasury", "Treasury"}});
        });
}

void buildings(QXmlStreamWriter& xml)
{
    base_subform(xml, "chain", "building_chains", "0", [](QXmlStreamWriter& xml) {
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            fields(xml, {{"static_text_field", "key"},
                         {"text_edit_field", "onscreen_name"},
                         {"combo_box_field", "category"}});
        });
    });
    child_subform(xml, "levels", "building_levels", "chain", "key", "chain", [](QXmlStreamWriter& xml) {
        grid(xml,
             {{"key", "Key"},
              {"level", "Level"},
              {"onscreen_name", "Name"},
              {"cost", "Cost"},
              {"turns", "Turns"},
              {"required_technology", "Technology"}},
             {"onscreen_name"});
        xml.writeEmptyElement("new_button");
    });
}

void start_positions(QXmlStreamWriter& xml)
{
    base_subform(xml, "campaign", "campaigns", "dropdown", [](QXmlStreamWriter& xml) {
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            fields(xml, {{"static_text_field", "campaign_name"}, {"text_edit_field", "onscreen_name"}});
            named(xml, "text_edit_field", "start", "start_year");
            named(xml, "text_edit_field", "turns", "turns_per_year");
            named(xml, "eval", "years_in_100_turns", "100 / turns");
            element(xml, "check_box_field", "playable");
        });
    });
    child_subform(xml, "factions", "start_pos_factions", "campaign", "campaign_name", "campaign",
                  [](QXmlStreamWriter& xml) {
                      element(xml, "record_switching", "true");
                      block(xml, "columns", [](QXmlStreamWriter& xml) {
                          fields(xml, {{"combo_box_field", "faction"},
                                       {"check_box_field", "playable"},
                                       {"text_edit_field", "treasury"}});
                      });
                      xml.writeEmptyElement("new_button");
                  });
    child_subform(xml, "armies", "start_pos_armies", "factions", "ID", "faction", [](QXmlStreamWriter& xml) {
        element(xml, "record_switching", "true");
        block(xml, "columns", [](QXmlStreamWriter& xml) {
            fields(xml, {{"static_text_field", "key"}, {"text_edit_field", "army_name"}});
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
    child_subform(xml, "army_units", "start_pos_army_units", "armies", "key", "army",
                  [](QXmlStreamWriter& xml) {
                      grid(xml, {{"unit", "Unit"}, {"experience", "Experience"}, {"strength", "Strength"}});
                      xml.writeEmptyElement("new_button");
                  });
}

void advice(QXmlStreamWriter& xml)
{
    base_subform(xml, "thread", "advice_threads", "true", [](QXmlStreamWriter& xml) {
        groupbox(xml, "Advice", [](QXmlStreamWriter& xml) {
            fields(xml, {{"static_text_field", "key"},
                         {"text_edit_field", "title"},
                         {"memo_edit_field", "text"},
                         {"text_edit_field", "priority"}});
        });
    });
    child_subform(xml, "triggers", "advice_triggers", "thread", "key", "advice_thread",
                  [](QXmlStreamWriter& xml) {
                      xml.writeEmptyElement("use_parent_groupbox");
                      grid(xml,
                           {{"key", "Trigger"},
                            {"event", "Event"},
                            {"condition", "Condition"},
                            {"once_per_campaign", "Once"}},
                           {"condition"});
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
