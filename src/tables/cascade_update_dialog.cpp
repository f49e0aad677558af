#include "cascade_update_dialog.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

#include <algorithm>

CASCADE_UPDATE_DIALOG::CASCADE_UPDATE_DIALOG(VELD_DATA* session,
                                             const QMap<QString, QSet<QString>>& references,
                                             QWidget* parent_editor, bool view_only)
    : QDialog(parent_editor), m_view_only(view_only), m_session(session), m_parent_editor(parent_editor)
{
    setObjectName(QStringLiteral("cascadeUpdateDialog"));
    setWindowTitle(QStringLiteral("Cascade Update?"));

    m_question = new QLabel(
        QStringLiteral(
            "This field is referenced by the following tables and records, update these at the same time?"),
        this);
    m_question->setObjectName(QStringLiteral("questionLabel"));
    m_question->setWordWrap(true);

    m_tree = new QTreeWidget(this);
    m_tree->setObjectName(QStringLiteral("referencesTree"));
    m_tree->setColumnCount(1);
    m_tree->header()->hide();
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setAlternatingRowColors(true);

    m_cancel = new QPushButton(QStringLiteral("Cancel"), this);
    m_cancel->setObjectName(QStringLiteral("cancelButton"));
    m_update = new QPushButton(QStringLiteral("Update Dependents"), this);
    m_update->setObjectName(QStringLiteral("updateDependentsButton"));
    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("okButton"));
    m_apply_to_all_box = new QCheckBox(QStringLiteral("Apply Selection To All"), this);
    m_apply_to_all_box->setObjectName(QStringLiteral("applyToAllCheckBox"));
    auto* count_text = new QLabel(QStringLiteral("Number of references:"), this);
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("referenceCountLabel"));

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_question, 0, 0, 1, 4);
    layout->addWidget(m_tree, 1, 0, 1, 4);
    layout->addWidget(count_text, 2, 0);
    layout->addWidget(m_count, 2, 1);
    layout->addWidget(m_apply_to_all_box, 2, 3, Qt::AlignRight);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_update);
    buttons->addWidget(m_ok);
    layout->addLayout(buttons, 3, 0, 1, 4);

    // Tables in name order, records in key order: the same references always
    // read the same way.
    for (auto table = references.constBegin(); table != references.constEnd(); ++table)
    {
        auto* table_item = new QTreeWidgetItem(m_tree, QStringList{table.key()});
        QStringList keys = table.value().values();
        std::sort(keys.begin(), keys.end());
        for (const QString& key : qAsConst(keys))
            new QTreeWidgetItem(table_item, QStringList{key});
        m_reference_count += keys.size();
    }
    m_tree->expandAll();
    m_count->setText(QString::number(m_reference_count));

    connect(m_tree, SIGNAL(doubleClicked(QModelIndex)), this, SLOT(open_table_with_item(QModelIndex)));
    if (m_view_only)
    {
        m_question->hide();
        m_apply_to_all_box->hide();
        m_update->hide();
        m_cancel->hide();
        connect(m_ok, SIGNAL(clicked()), this, SLOT(clicked_ok()));
        setWindowTitle(QStringLiteral("References"));
    }
    else
    {
        m_ok->hide();
        connect(m_update, SIGNAL(clicked()), this, SLOT(clicked_cascade_update()));
        connect(m_cancel, SIGNAL(clicked()), this, SLOT(clicked_cancel()));
        connect(m_apply_to_all_box, SIGNAL(toggled(bool)), this, SLOT(apply_to_all_toggled()));
        m_update->setDefault(true);
    }
}

CASCADE_UPDATE_DIALOG::~CASCADE_UPDATE_DIALOG() = default;

void CASCADE_UPDATE_DIALOG::apply_to_all_toggled()
{
    m_apply_to_all = !m_apply_to_all;
}

void CASCADE_UPDATE_DIALOG::clicked_cascade_update()
{
    m_update_chosen = true;
    accept();
}

void CASCADE_UPDATE_DIALOG::clicked_cancel()
{
    m_update_chosen = false;
    accept();
}

void CASCADE_UPDATE_DIALOG::clicked_ok()
{
    accept();
}

void CASCADE_UPDATE_DIALOG::open_table_with_item(const QModelIndex& index)
{
    // Table items name no record.
    if (!index.isValid() || !index.parent().isValid() || !m_parent_editor)
        return;
    QModelIndex table = index;
    while (table.parent().isValid())
        table = table.parent();
    QMetaObject::invokeMethod(m_parent_editor, "focus_on_row_in_table",
                              Q_ARG(QString, table.data().toString()),
                              Q_ARG(QString, index.data().toString()), Q_ARG(bool, false));
}
