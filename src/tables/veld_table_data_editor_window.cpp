#include "veld_table_data_editor_window.h"

#include "veld_form_type.h"
#include "veld_table_data_editor.h"
#include "veld_window_registry.h"

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace
{
bool has_member(const QObject* object, const char* signature, bool signal)
{
    if (!object)
        return false;
    const QByteArray normalised = QMetaObject::normalizedSignature(signature);
    return signal ? object->metaObject()->indexOfSignal(normalised.constData()) >= 0
                  : object->metaObject()->indexOfSlot(normalised.constData()) >= 0;
}
} // namespace

QMdiSubWindow* VELD_TABLE_DATA_EDITOR_WINDOW::open(QMdiArea* area, VELD_DATA* session, QWidget* main_window,
                                                   const QString& table_key, bool read_only, QString& error)
{
    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    if (registry.is_form_open(table_key, VELD_FORM_TYPE::TABLE_DATA_EDITOR))
    {
        registry.raise_form(table_key, VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        return registry.find_form(table_key, VELD_FORM_TYPE::TABLE_DATA_EDITOR);
    }
    if (!area)
    {
        error = QStringLiteral("There is no window area to open the table in");
        return nullptr;
    }

    QApplication::setOverrideCursor(Qt::WaitCursor);
    auto* editor = new VELD_TABLE_DATA_EDITOR(table_key, session, main_window, read_only);
    if (!editor->open(error))
    {
        delete editor;
        QApplication::restoreOverrideCursor();
        return nullptr;
    }
    if (has_member(main_window, "statusbarUpdate(QString)", false))
        QObject::connect(editor, SIGNAL(statusUpdate(QString)), main_window, SLOT(statusbarUpdate(QString)));
    if (has_member(main_window, "refreshDialogColours()", true))
        QObject::connect(main_window, SIGNAL(refreshDialogColours()), editor, SLOT(refreshColours()));

    QMdiSubWindow* window = area->addSubWindow(editor);
    window->setAttribute(Qt::WA_DeleteOnClose);
    // A first opening fits the area; a saved geometry comes back on registering.
    const QSize room = area->viewport()->size();
    if (room.isValid() && !room.isEmpty())
        window->resize(window->size().boundedTo(room));
    window->show();
    QString registration_error;
    if (!registry.register_form(registration_error, table_key, VELD_FORM_TYPE::TABLE_DATA_EDITOR, window))
        emit editor->statusUpdate(registration_error);
    QApplication::restoreOverrideCursor();
    return window;
}
