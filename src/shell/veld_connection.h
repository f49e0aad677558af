#pragma once

#include "veld_connection_history.h"

#include <QtWidgets/QDialog>

#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;
class VELD_DATA;

// Chooses the database folder and up to three mirror databases, with the
// recent paths of each, and connects them through the session: all or
// nothing, a failure disconnects what did connect.
//
// The mirrors are hidden unless show_mirrors() is called (the full
// configuration); the main folder is the session's connect path.
class VELD_CONNECTION : public QDialog
{
    Q_OBJECT

public:
    VELD_CONNECTION(VELD_DATA* session, QWidget* parent = nullptr);

    // Offers the mirror databases.
    void show_mirrors();

    QComboBox* main_combo() const { return m_main_combo; }
    QComboBox* mirror_combo(int mirror) const { return m_mirror_combos[mirror]; }
    QCheckBox* mirror_check(int mirror) const { return m_mirror_checks[mirror]; }
    QPushButton* mirror_navigate(int mirror) const { return m_mirror_buttons[mirror]; }
    QPushButton* connect_button() const { return m_connect_button; }

signals:
    void statusUpdate(QString status);
    void connectionEstablished();
    void signalDisconnected();
    void databaseConnectedExternally();

public slots:
    void onMainDatabaseNavigate();
    void onMirror1DatabaseNavigate();
    void onMirror2DatabaseNavigate();
    void onMirror3DatabaseNavigate();
    void onMirror1CheckStateChange(int state);
    void onMirror2CheckStateChange(int state);
    void onMirror3CheckStateChange(int state);
    void onConnect(bool checked = false);
    void disconnected();

private:
    void navigate(QComboBox* combo);
    void mirror_check_changed(int mirror, int state);
    void load_histories();
    void save_histories();
    VELD_CONNECTION_HISTORY& history(int database) { return m_histories[database]; }
    QComboBox* combo(int database) const;

    VELD_DATA* m_session = nullptr;
    // Main, mirror 1, mirror 2, mirror 3.
    std::array<VELD_CONNECTION_HISTORY, 4> m_histories;
    QString m_connect_path;
    QString m_design_data_path;

    QComboBox* m_main_combo = nullptr;
    QPushButton* m_main_button = nullptr;
    QGroupBox* m_mirror_group = nullptr;
    std::array<QCheckBox*, 3> m_mirror_checks{};
    std::array<QComboBox*, 3> m_mirror_combos{};
    std::array<QPushButton*, 3> m_mirror_buttons{};
    QPushButton* m_connect_button = nullptr;
};
