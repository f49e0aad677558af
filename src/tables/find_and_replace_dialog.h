#pragma once

#include <QDialog>
#include <QMap>
#include <QString>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QKeyEvent;
class QLabel;
class QPushButton;

// The search window of a table data editor: the terms, the options and the
// histories of searched and replacing texts. It only asks; the editor walks
// the cells, reading "Case Sensitive" and "In Selection" from here.
//
// The histories are kept in the settings "Northfold\Quill\Veld\Searches",
// shared by every table, newest first in the combos.
class FIND_AND_REPLACE_DIALOG : public QDialog
{
    Q_OBJECT

public:
    enum MODE
    {
        FIND_MODE,
        REPLACE_MODE
    };

    // `field_names` in column order, for "Search Field".
    FIND_AND_REPLACE_DIALOG(const QString& table_key, const QStringList& field_names,
                            QWidget* parent = nullptr);
    ~FIND_AND_REPLACE_DIALOG() override;

    // Find mode hides everything about replacing.
    void set_mode(MODE mode);
    MODE mode() const { return m_mode; }

    bool case_sensitive() const;
    bool in_selection() const;

    // The histories by index, oldest first.
    const QMap<int, QString>& search_history() const { return m_search_history; }
    const QMap<int, QString>& replace_history() const { return m_replace_history; }

    // The key that switches to replace mode: the platform's Replace key, or
    // Ctrl+H where the platform has none (a desktop-less X11 session).
    static bool is_replace_key(const QKeyEvent* event);

    // How many entries each history keeps; the oldest drop out.
    static const int history_limit = 50;

signals:
    void search_next_string_instance(const QString& search_text, const QString& search_field,
                                     int search_direction, bool search_underlying);
    void replace_current_or_next(const QString& search_string, const QString& replace_string,
                                 const QString& search_column, int search_direction, bool search_underlying);
    void replace_all(const QString& search_string, const QString& replace_string,
                     const QString& search_column, int search_direction, bool search_underlying);

public slots:
    void on_click_search();
    void on_click_replace();
    void on_click_replace_all();
    void on_click_close();
    void on_click_use_search_field();
    void on_click_use_selection();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString search_field() const;
    int direction() const;
    void load_histories();
    void update_histories();
    void fill_combos();

    QMap<int, QString> m_search_history;
    int m_next_search_index = 0;
    QMap<int, QString> m_replace_history;
    int m_next_replace_index = 0;
    MODE m_mode = REPLACE_MODE;

    QComboBox* m_search_text = nullptr;
    QComboBox* m_replace_text = nullptr;
    QLabel* m_replace_label = nullptr;
    QComboBox* m_direction = nullptr;
    QCheckBox* m_search_underlying = nullptr;
    QCheckBox* m_use_search_field = nullptr;
    QComboBox* m_search_field = nullptr;
    QCheckBox* m_case_sensitive = nullptr;
    QCheckBox* m_in_selection = nullptr;
    QPushButton* m_find_button = nullptr;
    QPushButton* m_replace_button = nullptr;
    QPushButton* m_replace_all_button = nullptr;
    QPushButton* m_cancel_button = nullptr;
};
