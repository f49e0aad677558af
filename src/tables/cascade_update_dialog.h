#pragma once

#include <QDialog>
#include <QMap>
#include <QPointer>
#include <QSet>
#include <QString>

class QCheckBox;
class QLabel;
class QModelIndex;
class QPushButton;
class QTreeWidget;
class VELD_DATA;

// The records of other tables that use a value, by table.
//
// In decision mode it asks whether a changed value should be updated in those
// records too ("Update Dependents" or "Cancel"; closing the window counts as
// a cancel), and whether that answer holds for the rest of a paste or
// multi-cell edit ("Apply Selection To All"). In view-only mode it only lists
// them ("See references"). In both, a double click on a record asks the
// parent editor to show that record.
class CASCADE_UPDATE_DIALOG : public QDialog
{
    Q_OBJECT

public:
    // `references` maps each referring table to the keys of its records that
    // use the value. `parent_editor` is the table editor it belongs to.
    CASCADE_UPDATE_DIALOG(VELD_DATA* session, const QMap<QString, QSet<QString>>& references,
                          QWidget* parent_editor, bool view_only);
    ~CASCADE_UPDATE_DIALOG() override;

    bool update_chosen() const { return m_update_chosen; }
    bool apply_to_all() const { return m_apply_to_all; }
    int reference_count() const { return m_reference_count; }
    bool is_view_only() const { return m_view_only; }

signals:
    void statusUpdate(QString status);

public slots:
    void apply_to_all_toggled();
    void clicked_cascade_update();
    void clicked_cancel();
    void clicked_ok();
    void open_table_with_item(const QModelIndex& index);

private:
    bool m_update_chosen = false;
    bool m_apply_to_all = false;
    const bool m_view_only;
    int m_reference_count = 0;
    VELD_DATA* m_session = nullptr;
    QPointer<QWidget> m_parent_editor;

    QLabel* m_question = nullptr;
    QTreeWidget* m_tree = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_update = nullptr;
    QPushButton* m_ok = nullptr;
    QCheckBox* m_apply_to_all_box = nullptr;
    QLabel* m_count = nullptr;
};
