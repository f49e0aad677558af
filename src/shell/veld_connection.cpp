#include "veld_connection.h"

#include "orbin_settings.h"
#include "prompt.h"
#include "veld_data.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

namespace
{
const char* const CONNECTIONS = "Northfold\\Quill\\Veld\\Connections";
const int MAIN = 0;
} // namespace

VELD_CONNECTION::VELD_CONNECTION(VELD_DATA* session, QWidget* parent)
    : QDialog(parent),
      m_session(session), m_histories{VELD_CONNECTION_HISTORY(QStringLiteral("recentMainConnections")),
                                      VELD_CONNECTION_HISTORY(QStringLiteral("recentMirror1Connections")),
                                      VELD_CONNECTION_HISTORY(QStringLiteral("recentMirror2Connections")),
                                      VELD_CONNECTION_HISTORY(QStringLiteral("recentMirror3Connections"))}
{
    setObjectName(QStringLiteral("Connection"));
    setWindowTitle(QStringLiteral("Connection"));

    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Database Folder"), this), 0, 0);
    m_main_combo = new QComboBox(this);
    m_main_combo->setObjectName(QStringLiteral("mainDatabaseCombo"));
    m_main_combo->setEditable(true);
    m_main_combo->setMinimumWidth(360);
    layout->addWidget(m_main_combo, 0, 1);
    m_main_button = new QPushButton(QStringLiteral("..."), this);
    m_main_button->setObjectName(QStringLiteral("mainDatabaseNavigate"));
    m_main_button->setFixedWidth(32);
    layout->addWidget(m_main_button, 0, 2);

    m_mirror_group = new QGroupBox(QStringLiteral("Mirror Changes In"), this);
    auto* mirrors = new QGridLayout(m_mirror_group);
    for (int mirror = 0; mirror < 3; ++mirror)
    {
        const QString number = QString::number(mirror + 1);
        m_mirror_checks[mirror] = new QCheckBox(QStringLiteral("Mirror DB ") + number, m_mirror_group);
        m_mirror_checks[mirror]->setObjectName(QStringLiteral("mirror%1Check").arg(number));
        m_mirror_combos[mirror] = new QComboBox(m_mirror_group);
        m_mirror_combos[mirror]->setObjectName(QStringLiteral("mirror%1Combo").arg(number));
        m_mirror_combos[mirror]->setEditable(true);
        m_mirror_combos[mirror]->setEnabled(false);
        m_mirror_buttons[mirror] = new QPushButton(QStringLiteral("..."), m_mirror_group);
        m_mirror_buttons[mirror]->setObjectName(QStringLiteral("mirror%1Navigate").arg(number));
        m_mirror_buttons[mirror]->setFixedWidth(32);
        m_mirror_buttons[mirror]->setEnabled(false);
        // Only the first mirror can be ticked until the one before is.
        m_mirror_checks[mirror]->setEnabled(mirror == 0);
        mirrors->addWidget(m_mirror_checks[mirror], mirror, 0);
        mirrors->addWidget(m_mirror_combos[mirror], mirror, 1);
        mirrors->addWidget(m_mirror_buttons[mirror], mirror, 2);
    }
    mirrors->setColumnStretch(1, 1);
    layout->setColumnStretch(1, 1);
    layout->addWidget(m_mirror_group, 1, 0, 1, 3);

    m_connect_button = new QPushButton(QStringLiteral("Connect"), this);
    m_connect_button->setObjectName(QStringLiteral("connectButton"));
    layout->addWidget(m_connect_button, 2, 1, 1, 2, Qt::AlignRight);

    connect(m_main_button, SIGNAL(clicked()), this, SLOT(onMainDatabaseNavigate()));
    connect(m_mirror_buttons[0], SIGNAL(clicked()), this, SLOT(onMirror1DatabaseNavigate()));
    connect(m_mirror_buttons[1], SIGNAL(clicked()), this, SLOT(onMirror2DatabaseNavigate()));
    connect(m_mirror_buttons[2], SIGNAL(clicked()), this, SLOT(onMirror3DatabaseNavigate()));
    connect(m_mirror_checks[0], SIGNAL(stateChanged(int)), this, SLOT(onMirror1CheckStateChange(int)));
    connect(m_mirror_checks[1], SIGNAL(stateChanged(int)), this, SLOT(onMirror2CheckStateChange(int)));
    connect(m_mirror_checks[2], SIGNAL(stateChanged(int)), this, SLOT(onMirror3CheckStateChange(int)));

    if (m_session)
    {
        m_connect_path = m_session->connect_path();
        m_design_data_path = m_session->design_data_path();
        connect(m_session, SIGNAL(disconnected()), this, SLOT(disconnected()));
    }
    m_main_combo->setEditText(m_connect_path);
    m_main_combo->setEnabled(false);

    // The mirrors are offered only by a wider configuration (show_mirrors).
    m_mirror_group->hide();

    connect(m_connect_button, SIGNAL(clicked(bool)), this, SLOT(onConnect(bool)));
    if (parent && parent->metaObject()->indexOfSlot("disconnectedProxy()") >= 0)
        connect(this, SIGNAL(signalDisconnected()), parent, SLOT(disconnectedProxy()));

    if (m_session && m_session->is_connected())
        m_connect_button->setEnabled(false);

    load_histories();
    // The history put the newest main path in the edit; the main folder is
    // the session's.
    m_main_combo->setEditText(m_connect_path);
    setMaximumSize(layout->sizeHint().expandedTo(QSize(480, 0)));
}

void VELD_CONNECTION::show_mirrors()
{
    m_mirror_group->show();
    setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    adjustSize();
}

QComboBox* VELD_CONNECTION::combo(int database) const
{
    return database == MAIN ? m_main_combo : m_mirror_combos[database - 1];
}

void VELD_CONNECTION::load_histories()
{
    ORBIN_SETTINGS settings(QString::fromLatin1(CONNECTIONS));
    for (int database = 0; database < 4; ++database)
    {
        history(database).load(settings);
        QComboBox* box = combo(database);
        box->clear();
        box->setInsertPolicy(QComboBox::InsertAtTop);
        // Oldest first, each at the top, so the newest ends first.
        const QStringList paths = history(database).paths();
        for (auto path = paths.crbegin(); path != paths.crend(); ++path)
            box->insertItem(0, *path);
        box->setCurrentIndex(0);
    }
}

void VELD_CONNECTION::save_histories()
{
    ORBIN_SETTINGS settings(QString::fromLatin1(CONNECTIONS));
    for (int database = 0; database < 4; ++database)
        history(database).save(settings);
}

void VELD_CONNECTION::navigate(QComboBox* box)
{
    const QString folder = prompt::get_existing_directory(this, QStringLiteral("Choose a database directory"),
                                                          box->currentText());
    if (!folder.isEmpty())
        box->setEditText(folder.toLower());
}

void VELD_CONNECTION::onMainDatabaseNavigate()
{
    navigate(m_main_combo);
}

void VELD_CONNECTION::onMirror1DatabaseNavigate()
{
    navigate(m_mirror_combos[0]);
}

void VELD_CONNECTION::onMirror2DatabaseNavigate()
{
    navigate(m_mirror_combos[1]);
}

void VELD_CONNECTION::onMirror3DatabaseNavigate()
{
    navigate(m_mirror_combos[2]);
}

void VELD_CONNECTION::mirror_check_changed(int mirror, int state)
{
    const bool ticked = state != Qt::Unchecked;
    m_mirror_combos[mirror]->setEnabled(ticked);
    m_mirror_buttons[mirror]->setEnabled(ticked);
    if (mirror + 1 >= 3)
        return;
    if (ticked)
    {
        m_mirror_checks[mirror + 1]->setEnabled(true);
        return;
    }
    // Unticking one drops the mirrors after it: they come in order.
    for (int later = mirror + 1; later < 3; ++later)
    {
        m_mirror_checks[later]->setChecked(false);
        m_mirror_checks[later]->setEnabled(false);
        m_mirror_combos[later]->setEnabled(false);
        m_mirror_buttons[later]->setEnabled(false);
    }
}

void VELD_CONNECTION::onMirror1CheckStateChange(int state)
{
    mirror_check_changed(0, state);
}

void VELD_CONNECTION::onMirror2CheckStateChange(int state)
{
    mirror_check_changed(1, state);
}

void VELD_CONNECTION::onMirror3CheckStateChange(int state)
{
    mirror_check_changed(2, state);
}

void VELD_CONNECTION::onConnect(bool)
{
    m_connect_button->setEnabled(false);
    QApplication::setOverrideCursor(Qt::WaitCursor);

    QString error;
    bool success = false;
    const QString main_path = m_main_combo->currentText();
    if (m_session && !main_path.isEmpty() && m_session->connect_main(error, main_path, 2))
    {
        success = true;
        for (int mirror = 0; mirror < 3 && success; ++mirror)
        {
            const QString path = m_mirror_combos[mirror]->currentText();
            if (m_mirror_checks[mirror]->isChecked() && !path.isEmpty())
                success = m_session->connect_mirror(error, mirror, path);
        }
    }

    if (success)
    {
        emit statusUpdate(QStringLiteral("Connection Established!"));
        for (int database = 0; database < 4; ++database)
        {
            const QString path = combo(database)->currentText();
            if (!path.isEmpty())
                history(database).add(path.toLower());
        }
        save_histories();
        load_histories();
        m_main_combo->setEditText(main_path);
    }
    else
    {
        if (main_path.isEmpty())
            error += QStringLiteral("Connection failed! : The connection string is empty ");
        if (m_session && m_session->is_connected())
        {
            QString disconnect_error;
            if (m_session->disconnect_all(disconnect_error))
                emit signalDisconnected();
            else
                error += QStringLiteral(" : ") + disconnect_error;
        }
        m_connect_button->setEnabled(true);
        emit statusUpdate(QStringLiteral("Connection failed! : ") + error);
    }
    QApplication::restoreOverrideCursor();
}

void VELD_CONNECTION::disconnected()
{
    m_connect_button->setEnabled(true);
}
