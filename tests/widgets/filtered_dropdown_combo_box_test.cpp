#include "filtered_dropdown_combo_box.h"
#include "test_helpers.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QtTest>

using QTSHARED::FilteredDropdownComboBox;

class FILTERED_DROPDOWN_COMBO_BOX_TEST : public QObject
{
    Q_OBJECT

private:
    static void fill(FilteredDropdownComboBox& box, const QStringList& texts)
    {
        for (const QString& text : texts)
            box.addItem(text, QStringLiteral("value:") + text);
    }

    // Shows the box and types into it as the user would; true once the
    // narrowed popup shows.
    static bool type_into(FilteredDropdownComboBox& box, const QString& text)
    {
        box.show();
        if (!QTest::qWaitForWindowExposed(&box))
            return false;
        box.setFocus();
        box.lineEdit()->clear();
        QTest::keyClicks(box.lineEdit(), text);
        return ORBIN_TEST::wait_until([&] { return box.narrowing_completer()->popup()->isVisible(); });
    }

private slots:
    void is_editable_and_never_inserts_typed_text()
    {
        FilteredDropdownComboBox box;
        fill(box, {"Goblin", "Orc"});
        QVERIFY(box.isEditable());
        box.lineEdit()->setText("Troll");
        box.resolve_typed_text();
        QCOMPARE(box.count(), 2);
        QCOMPARE(box.lineEdit()->text(), QString("Goblin"));
    }

    void typing_narrows_the_popup()
    {
        FilteredDropdownComboBox box;
        fill(box, {"Goblin", "Hobgoblin", "Orc", "Ogre"});
        QVERIFY(type_into(box, "GOB"));
        QCOMPARE(box.narrowing_completer()->completionCount(), 2);
        // The full list keeps every item and its data while narrowed.
        QCOMPARE(box.count(), 4);
        QCOMPARE(box.itemData(2).toString(), QString("value:Orc"));
        QCOMPARE(box.matching_rows("gob"), (QList<int>{0, 1}));
    }

    void resolving_typed_text_data()
    {
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("expected");
        QTest::addColumn<QString>("shown");

        const QStringList beasts{"", "Goblin", "Hobgoblin", "Orc"};
        QTest::newRow("equal ignoring case wins over containing") << beasts << 3 << "goblin" << 1 << "Goblin";
        QTest::newRow("only item containing the text") << beasts << 1 << "hob" << 2 << "Hobgoblin";
        QTest::newRow("ambiguous text puts the current back") << beasts << 3 << "gob" << 3 << "Orc";
        QTest::newRow("unknown text puts the current back") << beasts << 1 << "Troll" << 1 << "Goblin";
        QTest::newRow("empty text chooses the empty item") << beasts << 3 << "" << 0 << "";
        QTest::newRow("empty text without an empty item keeps the current")
            << QStringList{"Goblin", "Orc"} << 1 << "" << 1 << "Orc";
    }

    void resolving_typed_text()
    {
        QFETCH(QStringList, items);
        QFETCH(int, start);
        QFETCH(QString, typed);
        QFETCH(int, expected);
        QFETCH(QString, shown);

        FilteredDropdownComboBox box;
        fill(box, items);
        box.setCurrentIndex(start);
        QSignalSpy activated(&box, QOverload<int>::of(&QComboBox::activated));
        box.lineEdit()->setText(typed);
        QCOMPARE(box.resolve_typed_text(), expected);
        QCOMPARE(box.currentIndex(), expected);
        QCOMPARE(box.lineEdit()->text(), shown);
        QCOMPARE(activated.count(), expected == start ? 0 : 1);
    }

    void set_current_index_ends_narrowing()
    {
        FilteredDropdownComboBox box;
        fill(box, {"Goblin", "Hobgoblin", "Orc"});
        QVERIFY(type_into(box, "gob"));

        box.setCurrentIndex(2);
        QVERIFY(!box.narrowing_completer()->popup()->isVisible());
        QCOMPARE(box.lineEdit()->text(), QString("Orc"));
        QCOMPARE(box.currentData().toString(), QString("value:Orc"));
    }

    void text_set_by_code_is_not_resolved_when_focus_leaves()
    {
        QWidget window;
        auto* box = new FilteredDropdownComboBox(&window);
        auto* other = new QLineEdit(&window);
        fill(*box, {"Goblin", "Hobgoblin"});
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.activateWindow();
        box->setCurrentIndex(-1);
        box->lineEdit()->setText("gob"); // e.g. a value the list does not offer
        box->setFocus();
        QTRY_VERIFY(box->hasFocus());
        other->setFocus();
        QTRY_VERIFY(other->hasFocus());
        QCOMPARE(box->currentIndex(), -1);
        QCOMPARE(box->lineEdit()->text(), QString("gob"));

        // Typed by the user, it is resolved.
        box->setFocus();
        QTRY_VERIFY(box->hasFocus());
        box->lineEdit()->clear();
        QTest::keyClicks(box->lineEdit(), "hobg");
        box->narrowing_completer()->popup()->hide();
        other->setFocus();
        QTRY_VERIFY(other->hasFocus());
        QCOMPARE(box->currentIndex(), 1);
    }

    void picking_from_the_narrowed_popup_chooses_the_full_list_row()
    {
        FilteredDropdownComboBox box;
        fill(box, {"Goblin", "Hobgoblin", "Orc"});
        QVERIFY(type_into(box, "hob"));
        QAbstractItemView* popup = box.narrowing_completer()->popup();
        QTest::keyClick(popup, Qt::Key_Down);
        QTest::keyClick(popup, Qt::Key_Return);
        QCOMPARE(box.currentIndex(), 1);
        QCOMPARE(box.currentData().toString(), QString("value:Hobgoblin"));
        QVERIFY(!popup->isVisible());
    }

    void one_return_in_the_popup_chooses_and_commits_an_item_view_editor()
    {
        QStandardItemModel model(1, 1);
        model.setData(model.index(0, 0), "Goblin");
        QTableView view;
        view.setModel(&model);
        // An item view's delegate commits when Return reaches the editor.
        struct DELEGATE : QStyledItemDelegate
        {
            QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                  const QModelIndex&) const override
            {
                auto* box = new FilteredDropdownComboBox(parent);
                box->addItems({"Goblin", "Hobgoblin", "Orc"});
                return box;
            }
            void setModelData(QWidget* editor, QAbstractItemModel* target,
                              const QModelIndex& index) const override
            {
                target->setData(index, static_cast<FilteredDropdownComboBox*>(editor)->currentText());
            }
        } delegate;
        view.setItemDelegate(&delegate);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.edit(model.index(0, 0));
        auto* box = view.findChild<FilteredDropdownComboBox*>();
        QVERIFY(box);
        box->lineEdit()->clear();
        QTest::keyClicks(box->lineEdit(), "or");
        QTRY_VERIFY(box->narrowing_completer()->popup()->isVisible());
        QTest::keyClick(box->narrowing_completer()->popup(), Qt::Key_Return);
        QTRY_COMPARE(model.data(model.index(0, 0)).toString(), QString("Orc"));
        QTRY_VERIFY(!view.findChild<FilteredDropdownComboBox*>());
    }
};

QTEST_MAIN(FILTERED_DROPDOWN_COMBO_BOX_TEST)
#include "filtered_dropdown_combo_box_test.moc"
