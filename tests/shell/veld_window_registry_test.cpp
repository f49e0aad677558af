// The registry of open windows, with real MDI sub-windows.
#include "orbin_settings.h"
#include "prompt.h"
#include "scripted_prompt.h"
#include "veld_form_type.h"
#include "veld_pending_changes_form.h"
#include "veld_window_registry.h"

#include <QtTest/QtTest>

namespace
{
// A stand-in for a table data editor: it asks before it closes with pending
// work, unless told to skip the question.
class EDITOR : public QWidget, public VELD_PENDING_CHANGES_FORM
{
public:
    bool pending = false;
    bool skip = false;
    int questions = 0;

    bool has_pending_changes() const override { return pending; }
    void skip_save_question() override { skip = true; }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        if (pending && !skip)
        {
            ++questions;
            const auto answer = prompt::question(this, "Unsaved changes", "Apply?",
                                                 QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            if (answer == QMessageBox::Cancel)
            {
                event->ignore();
                return;
            }
        }
        event->accept();
    }
};
} // namespace

class VELD_WINDOW_REGISTRY_TEST : public QObject
{
    Q_OBJECT

    VELD_WINDOW_REGISTRY& registry = VELD_WINDOW_REGISTRY::instance();
    std::unique_ptr<QMdiArea> area;
    QList<QPair<QString, int>> registered;

    QMdiSubWindow* add(QWidget* widget, const QString& name, int type)
    {
        QMdiSubWindow* window = area->addSubWindow(widget);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
        QString error;
        if (!registry.register_form(error, name, type, window))
            qWarning("%s", qPrintable(error));
        registered << qMakePair(name, type);
        return window;
    }

private slots:
    void init()
    {
        area = std::make_unique<QMdiArea>();
        area->resize(800, 600);
        area->show();
        registry.set_mdi_area(area.get());
    }

    // The registry is one per process: whatever a case left is forgotten.
    void cleanup()
    {
        for (const auto& form : qAsConst(registered))
            registry.unregister_form(form.first, form.second);
        registered.clear();
        area.reset();
        QCOMPARE(registry.form_count(), 0);
        QCOMPARE(registry.real_form_count(), 0);
        QVERIFY(!registry.is_active());
    }

    void names_are_unique_per_type_only()
    {
        add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        add(new QWidget, "units", VELD_FORM_TYPE::SCHEMA_EDITOR);
        QVERIFY(registry.is_form_open("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        QVERIFY(registry.is_form_open("units", VELD_FORM_TYPE::SCHEMA_EDITOR));
        QVERIFY(!registry.is_form_open("units", VELD_FORM_TYPE::DIALOG));

        QString error;
        QMdiSubWindow* third = area->addSubWindow(new QWidget);
        QVERIFY(!registry.register_form(error, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR, third));
        QCOMPARE(error, QStringLiteral("A form of the same type with the same name is already registered"));
        QCOMPARE(registry.form_count(), 2);
    }

    void counts_leave_launchers_out_of_real_forms()
    {
        add(new QWidget, "TABLE_DATA_EDITOR", VELD_FORM_TYPE::LAUNCHER);
        add(new QWidget, "TABLE_DATA_EDITOR", VELD_FORM_TYPE::TABLE_LAUNCHER_SCHEMA_MODE);
        add(new QWidget, "OPTIONS_FORM", VELD_FORM_TYPE::DIALOG);
        QCOMPARE(registry.form_count(), 3);
        QCOMPARE(registry.real_form_count(), 2);
        QVERIFY(registry.any_of_type(VELD_FORM_TYPE::LAUNCHER));
        QVERIFY(!registry.any_of_type(VELD_FORM_TYPE::FORM));
        QVERIFY(registry.any_forms_except(VELD_FORM_TYPE::LAUNCHER));
    }

    void unregistering_an_unknown_form_fails()
    {
        QString error;
        QVERIFY(!registry.unregister_form(error, "nothing", VELD_FORM_TYPE::DIALOG));
        QCOMPARE(error, QStringLiteral("Form is not registered and therefore cannot be unregistered"));
        add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QVERIFY(!registry.unregister_form(error, "units", VELD_FORM_TYPE::SCHEMA_EDITOR));
        // Through the library's interface the error is dropped, the answer kept.
        DB_DIALOG_REGISTRATION_INTERFACE& library_side = registry;
        QVERIFY(!library_side.unregister_form("units", VELD_FORM_TYPE::SCHEMA_EDITOR));
        QVERIFY(library_side.unregister_form("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        QCOMPARE(registry.form_count(), 0);
    }

    // A window destroyed without unregistering counts as closed, and its
    // name can be taken again.
    void destroyed_window_frees_its_name()
    {
        QMdiSubWindow* window = add(new QWidget, "QUERY_DATA_EDITOR", VELD_FORM_TYPE::QUERY_EDITOR);
        delete window;
        QVERIFY(!registry.is_form_open("QUERY_DATA_EDITOR", VELD_FORM_TYPE::QUERY_EDITOR));
        QVERIFY(!registry.find_form("QUERY_DATA_EDITOR", VELD_FORM_TYPE::QUERY_EDITOR));
        add(new QWidget, "QUERY_DATA_EDITOR", VELD_FORM_TYPE::QUERY_EDITOR);
        QVERIFY(registry.is_form_open("QUERY_DATA_EDITOR", VELD_FORM_TYPE::QUERY_EDITOR));
        QCOMPARE(registry.form_count(), 1);
    }

    void geometry_is_kept_by_form_name()
    {
        QMdiSubWindow* first = add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        first->setGeometry(40, 30, 321, 234);
        QString error;
        QVERIFY(registry.unregister_form(error, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        registered.clear();

        ORBIN_SETTINGS settings("Northfold\\Quill\\Veld\\TableGeometries");
        QVERIFY(!settings.value("units").toByteArray().isEmpty());

        delete first;
        QMdiSubWindow* second = add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QCOMPARE(second->geometry(), QRect(40, 30, 321, 234));
        // A window at the very top stays there, however often it is reopened.
        second->setGeometry(0, 0, 200, 100);
        QString again;
        QVERIFY(registry.unregister_form(again, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
        delete second;
        for (int round = 0; round < 2; ++round)
        {
            QMdiSubWindow* reopened = add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
            QCOMPARE(reopened->geometry(), QRect(0, 0, 200, 100));
            QVERIFY(registry.unregister_form(again, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR));
            delete reopened;
        }
        registered.clear();
        // A place outside a smaller area comes back in.
        {
            ORBIN_SETTINGS geometries("Northfold\\Quill\\Veld\\TableGeometries");
            QMdiSubWindow probe;
            probe.setGeometry(5000, 4000, 200, 100);
            geometries.setValue("far", probe.saveGeometry());
        }
        QCOMPARE(add(new QWidget, "far", VELD_FORM_TYPE::DIALOG)->geometry(), QRect(0, 0, 200, 100));
        // Another name starts where the area puts it.
        QMdiSubWindow* other = add(new QWidget, "armies", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QVERIFY(other->geometry() != QRect(40, 30, 321, 234));
    }

    void forced_close_skips_the_question_of_table_editors()
    {
        auto* editor = new EDITOR;
        editor->pending = true;
        auto* dialog_editor = new EDITOR; // the same widget in a dialog's place is not a table editor
        dialog_editor->pending = true;
        QPointer<QMdiSubWindow> editor_window = add(editor, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QPointer<QMdiSubWindow> dialog_window = add(dialog_editor, "OPTIONS_FORM", VELD_FORM_TYPE::DIALOG);

        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::No); // the dialog still asks
        registry.close_all_forms(true);
        QCOMPARE(editor->questions, 0);
        QVERIFY(editor->skip);
        QCOMPARE(dialog_editor->questions, 1);
        QTRY_VERIFY(!editor_window && !dialog_window);
    }

    // Without force, an editor whose user cancels stays open in the area.
    void refused_close_keeps_the_window_in_the_area()
    {
        auto* editor = new EDITOR;
        editor->pending = true;
        QPointer<QMdiSubWindow> window = add(editor, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        SCRIPTED_PROMPT prompts;
        prompts.button(QMessageBox::Cancel);
        registry.close_all_forms(false);
        QCOMPARE(editor->questions, 1);
        QVERIFY(!editor->skip);
        QCoreApplication::processEvents();
        QVERIFY(window);
        QCOMPARE(window->mdiArea(), area.get());
        QVERIFY(window->isVisible());
    }

    void unsaved_forms_are_table_editors_with_pending_work()
    {
        auto* clean = new EDITOR;
        auto* dialog = new EDITOR;
        dialog->pending = true;
        add(clean, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        add(dialog, "OPTIONS_FORM", VELD_FORM_TYPE::DIALOG);
        add(new QWidget, "armies", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QVERIFY(!registry.any_unsaved_forms());
        clean->pending = true;
        QVERIFY(registry.any_unsaved_forms());
    }

    void forms_open_message_data()
    {
        QTest::addColumn<QStringList>("asked");
        QTest::addColumn<bool>("any");
        QTest::addColumn<QString>("message");
        QTest::newRow("none open") << QStringList{"cities", "roads"} << false << QString();
        QTest::newRow("one open") << QStringList{"cities", "units"} << true << "The units form is open";
        QTest::newRow("several open") << QStringList{"armies", "cities", "units"} << true
                                      << "The following forms are open: armies, units";
    }

    void forms_open_message()
    {
        QFETCH(QStringList, asked);
        QFETCH(bool, any);
        QFETCH(QString, message);
        add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        add(new QWidget, "armies", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        add(new QWidget, "cities", VELD_FORM_TYPE::SCHEMA_EDITOR);
        QString out;
        QCOMPARE(registry.forms_open_message(out, asked, VELD_FORM_TYPE::TABLE_DATA_EDITOR, false), any);
        QCOMPARE(out, message);
    }

    void raise_restores_a_minimised_window()
    {
        QMdiSubWindow* first = add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        add(new QWidget, "armies", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        first->showMinimized();
        QVERIFY(first->isMinimized());
        registry.raise_form("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QVERIFY(!first->isMinimized());
        QTRY_COMPARE(area->activeSubWindow(), first);
    }

    void close_form_takes_the_window_out_of_the_area()
    {
        QPointer<QMdiSubWindow> window = add(new QWidget, "units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        registry.close_form("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
        QVERIFY(area->subWindowList().isEmpty());
        QTRY_VERIFY(!window);
        // Nothing happens for a name that is not there.
        registry.close_form("units", VELD_FORM_TYPE::TABLE_DATA_EDITOR);
    }

    void the_area_of_a_destroyed_window_is_forgotten()
    {
        area.reset();
        QVERIFY(!registry.is_active());
        registry.close_all_forms(true); // must not touch the dead area
    }
};

QTEST_MAIN(VELD_WINDOW_REGISTRY_TEST)
#include "veld_window_registry_test.moc"
