#pragma once

#include "plugin_description.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <vector>

class APP_EXTENSION_PLUGIN_INTERFACE;
class DATABASE_EDITOR_PLUGIN_INTERFACE;
class QAction;
class QPluginLoader;
class QWidget;

// The plugins quill has loaded, and the widgets they have handed over.
//
// A plugin is a Qt plugin library whose root object provides
// APP_EXTENSION_PLUGIN_INTERFACE (checked by its interface id). Each widget a
// plugin hands over through its notifier is shown as a top-level window of its
// own, and kept alive by the manager's shared pointer until it is closed.
// Closing such a window asks the plugin's can_close() first.
class QUILL_PLUGIN_MANAGER : public QObject
{
    Q_OBJECT

public:
    struct PLUGIN
    {
        QString file;
        std::unique_ptr<QPluginLoader> loader;
        QObject* instance = nullptr;
        APP_EXTENSION_PLUGIN_INTERFACE* extension = nullptr;
        // Null when the plugin has no database side.
        DATABASE_EDITOR_PLUGIN_INTERFACE* database = nullptr;
        PLUGIN_DESCRIPTION description;
        // Owned by the manager; the host window only shows them in a menu.
        QList<QAction*> actions;

        PLUGIN();
        ~PLUGIN();
    };

    explicit QUILL_PLUGIN_MANAGER(QObject* parent = nullptr);
    // Drops every widget (without asking) and destroys the plugin objects.
    ~QUILL_PLUGIN_MANAGER() override;

    // Loads every library of the folder, in file name order. Answers the
    // problems, one line each; empty when everything loaded.
    QStringList load_folder(const QString& folder);
    // Loads one plugin library; false with a message naming the file.
    bool load_file(const QString& file, QString& error);

    const std::vector<std::unique_ptr<PLUGIN>>& plugins() const { return m_plugins; }
    // The widgets handed over and not yet closed, oldest first.
    QList<QWidget*> widgets() const;

    // Asks every plugin's can_close(), in load order, and stops at the first
    // refusal; `refusing` is then that plugin's name.
    bool can_close(QString& refusing);
    // Closes and drops every widget handed over, without asking.
    void release_all_widgets();

signals:
    void widget_shown(QWidget* widget);
    void widget_released();
    // One line of news for the host's log.
    void logged(const QString& line);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct HANDED_OVER
    {
        PLUGIN* plugin = nullptr;
        std::shared_ptr<QWidget> widget;
    };

    void take_widget(PLUGIN* plugin, std::shared_ptr<QWidget> widget);
    void release(QWidget* widget);
    static QString name_of(const PLUGIN& plugin);

    std::vector<std::unique_ptr<PLUGIN>> m_plugins;
    std::vector<HANDED_OVER> m_widgets;
    bool m_releasing_all = false;
};
