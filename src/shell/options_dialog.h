#pragma once

#include "veld_mdi_dialog.h"
#include <QtCore/QVector>
#include <QtGui/QColor>

class QCheckBox;
class QPushButton;

// The user's preferences: the colours of tables, lists, the diff and the
// main window, and two check-in switches. Everything is read from and
// written to the settings (VELD_OPTIONS); views pick the colours up when
// refreshColours() reaches them.
//
// An MDI child of the main window, registered as "OPTIONS_FORM", type 10.
class OPTIONS_DIALOG : public VELD_MDI_DIALOG
{
    Q_OBJECT

public:
    static QString form_name() { return QStringLiteral("OPTIONS_FORM"); }

    explicit OPTIONS_DIALOG(QWidget* parent = nullptr);

    // The "Default" box and the colour button of a colour key, for tests.
    QCheckBox* default_box(const QString& colour_key) const;
    QPushButton* colour_button(const QString& colour_key) const;
    QColor chosen_colour(const QString& colour_key) const;
    QCheckBox* auto_submit_lua_box() const { return m_auto_submit_lua; }
    QCheckBox* auto_submit_start_pos_box() const { return m_auto_submit_start_pos; }

signals:
    void refreshColours();

public slots:
    void on_cell_back_colour_default(int state);
    void on_cell_alternate_back_colour_default(int state);
    void on_frozen_cell_back_colour_default(int state);
    void on_frozen_cell_alternate_back_colour_default(int state);
    void on_cell_text_colour_default(int state);
    void on_frozen_cell_text_colour_default(int state);
    void on_window_back_default(int state);
    void on_altered_cell_colour_default(int state);
    void on_new_cell_colour_default(int state);
    void on_auto_submit_lua(int state);
    void on_auto_submit_start_pos(int state);
    void on_differs_colour_default(int state);
    void on_db_1_only_colour_default(int state);
    void on_db_2_only_colour_default(int state);
    void on_cell_back_colour_pick();
    void on_cell_alternate_back_colour_pick();
    void on_frozen_cell_back_colour_pick();
    void on_frozen_cell_alternate_back_colour_pick();
    void on_cell_text_colour_pick();
    void on_frozen_cell_text_colour_pick();
    void on_window_back_colour_pick();
    void on_altered_cell_colour_pick();
    void on_new_cell_colour_pick();
    void on_differs_colour_pick();
    void on_db_1_only_colour_pick();
    void on_db_2_only_colour_pick();
    // Stores everything, closes the dialog and tells the views.
    void on_accept();

private:
    struct ROW
    {
        QString default_key;
        QString colour_key;
        QCheckBox* box = nullptr;
        QPushButton* button = nullptr;
        QColor colour;
    };

    int row_of(const QString& colour_key) const;
    void default_changed(const QString& colour_key, int state);
    void pick(const QString& colour_key);
    void show_colour(ROW& row);
    // Writes every option and tells the views, leaving the dialog open.
    void apply();

    QVector<ROW> m_rows;
    QCheckBox* m_auto_submit_lua = nullptr;
    QCheckBox* m_auto_submit_start_pos = nullptr;
};
