#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

namespace
{
// Layout, its place in the raw data, and the components with their texts.
struct LAYOUT
{
    const char* key;
    const char* location;
    const char* components[6][2];
};

const LAYOUT LAYOUTS[] = {
    {"army_panel",
     "UI/army/army_panel.slpui",
     {{"header > title", "Army"},
      {"header > upkeep_label", "Upkeep"},
      {"units_list > empty_hint", "This army has no units."},
      {"footer > disband_button", "Disband"},
      {"footer > recruit_button", "Recruit"},
      {nullptr, nullptr}}},
    {"diplomacy_screen",
     "UI/diplomacy/diplomacy_screen.slpui",
     {{"header > title", "Diplomacy"},
      {"offer_panel > propose_button", "Propose"},
      {"offer_panel > trade_label", "Trade Agreement"},
      {"attitude > label", "Attitude"},
      {nullptr, nullptr}}},
    {"tech_tree",
     "UI/research/tech_tree.slpui",
     {{"header > title", "Research"},
      {"tree_tabs > military_tab", "Military"},
      {"tree_tabs > civic_tab", "Civic"},
      {"tree_tabs > naval_tab", "Naval"},
      {"footer > research_rate", "Research rate"},
      {nullptr, nullptr}}},
    {"settlement_panel",
     "UI/settlement/settlement_panel.slpui",
     {{"header > title", "Settlement"},
      {"stats > population_label", "Population"},
      {"stats > public_order_label", "Public Order"},
      {"slots > empty_slot", "Empty building slot"},
      {nullptr, nullptr}}},
    {"end_turn_popup",
     "UI/common/end_turn_popup.slpui",
     {{"body > question", "End the turn with units left to move?"},
      {"buttons > confirm", "End Turn"},
      {"buttons > cancel", "Cancel"},
      {nullptr, nullptr}}},
    {"main_menu",
     "UI/frontend/main_menu.slpui",
     {{"buttons > campaign", "Campaign"},
      {"buttons > battle", "Custom Battle"},
      {"buttons > options", "Options"},
      {"buttons > quit", "Quit to Desktop"},
      {nullptr, nullptr}}},
};

QString label_of(const QString& layout, const QString& component)
{
    return layout + "_" + SAMPLE_WORDS::slug(component.section('>', -1));
}
} // namespace

void SAMPLE_TABLES::add_interface(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("slatepad_text_layouts")
            .with({SAMPLE_FIELD::key("layout"), SAMPLE_FIELD::text("layout_location")
                                                    .required()
                                                    .file("raw_data/")
                                                    .describe("The layout file below the raw data folder")})
            .implemented("kmori", "raw-data-only-localisation")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const int count = context.small() ? 2 : int(sizeof(LAYOUTS) / sizeof(LAYOUTS[0]));
                for (int i = 0; i < count; ++i)
                    rows.add().set("layout", LAYOUTS[i].key).set("layout_location", LAYOUTS[i].location);
            }));

    catalogue.add(SAMPLE_TABLE("slatepad_component_texts")
                      .with({SAMPLE_FIELD::key("component_label"),
                             SAMPLE_FIELD::text("localised_string").required().localised("ui")})
                      .implemented("kmori", "raw-data-only-localisation")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          for (const SAMPLE_ROW& layout : context.rows("slatepad_text_layouts"))
                              for (const LAYOUT& known : LAYOUTS)
                                  if (layout.text("layout") == QLatin1String(known.key))
                                      for (int c = 0; c < 6 && known.components[c][0]; ++c)
                                          rows.add()
                                              .set("component_label",
                                                   label_of(known.key, known.components[c][0]))
                                              .set("localised_string", known.components[c][1]);
                      }));

    catalogue.add(
        SAMPLE_TABLE("slatepad_component_addresses_to_texts")
            .with({SAMPLE_FIELD::key("component_address"),
                   SAMPLE_FIELD::key("component_label")
                       .refers_to("slatepad_component_texts", "component_label", {"localised_string"}),
                   SAMPLE_FIELD::text("component_layout")
                       .required()
                       .refers_to("slatepad_text_layouts", "layout", {"layout_location"})})
            .implemented("kmori", "raw-data-only-localisation")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                for (const SAMPLE_ROW& layout : context.rows("slatepad_text_layouts"))
                    for (const LAYOUT& known : LAYOUTS)
                    {
                        if (layout.text("layout") != QLatin1String(known.key))
                            continue;
                        for (int c = 0; c < 6 && known.components[c][0]; ++c)
                        {
                            const QString label = label_of(known.key, known.components[c][0]);
                            const QString address =
                                QString("root > %1 > %2").arg(known.key, known.components[c][0]);
                            rows.add()
                                .set("component_address", address)
                                .set("component_label", label)
                                .set("component_layout", known.key);
                            // Some buttons show a second text (a tool tip) on the same component.
                            if (c == 0 && context.random().chance(0.5))
                                rows.add()
                                    .set("component_address", address)
                                    .set("component_label", label_of(known.key, known.components[1][0]))
                                    .set("component_layout", known.key);
                        }
                    }
            }));

    catalogue.add(
        SAMPLE_TABLE("ui_component_addresses_with_localisation")
            .with({SAMPLE_FIELD::key("component_address"),
                   SAMPLE_FIELD::text("layout").required().refers_to("slatepad_text_layouts", "layout"),
                   SAMPLE_FIELD::yesno("has_localisation").with_default(true)})
            .implemented("kmori", "raw-data-only-localisation")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                QSet<QString> seen;
                for (const SAMPLE_ROW& link : context.rows("slatepad_component_addresses_to_texts"))
                {
                    const QString address = link.text("component_address");
                    if (seen.contains(address))
                        continue;
                    seen.insert(address);
                    rows.add()
                        .set("component_address", address)
                        .set("layout", link.text("component_layout"))
                        .set("has_localisation", true);
                }
            }));
}
