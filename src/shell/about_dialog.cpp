#include "about_dialog.h"

#include "kor_xml_query_interface.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLCDNumber>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>

ABOUT_DIALOG::ABOUT_DIALOG(QWidget* parent) : VELD_MDI_DIALOG(form_name(), parent)
{
    setObjectName(QStringLiteral("aboutDialog"));
    setWindowTitle(QStringLiteral("About"));

    auto* icon = new QLabel(this);
    icon->setPixmap(QPixmap(QStringLiteral(":/icons/main"))
                        .scaled(64, 64, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    auto* name = new QLabel(QStringLiteral("Orbin"), this);
    QFont large = name->font();
    large.setPointSize(large.pointSize() * 2);
    large.setBold(true);
    name->setFont(large);

    m_version = new QLCDNumber(this);
    m_version->setObjectName(QStringLiteral("versionNumber"));
    m_version->setSegmentStyle(QLCDNumber::Flat);
    m_version->setDigitCount(4);
    m_version->setMinimumSize(90, 40);
    {
        // The format version is the engine's; it needs no database.
        const KOR_XML_QUERY_INTERFACE probe(nullptr, QString(), false, false);
        m_version->display(probe.version());
    }

    auto* authors = new QListWidget(this);
    authors->setObjectName(QStringLiteral("authorsList"));
    authors->addItems(
        {QStringLiteral("The ORBIN team: tools programming"), QStringLiteral("The ORBIN team: design data")});

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QGridLayout(this);
    layout->addWidget(icon, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(name, 0, 1, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Version"), this), 1, 1);
    layout->addWidget(m_version, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Authors"), this), 2, 1, Qt::AlignTop);
    layout->addWidget(authors, 2, 2);
    layout->addWidget(buttons, 3, 0, 1, 3);
}
