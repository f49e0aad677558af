#include "quill_plugin_manager.h"

#include "app_extension_plugin_interface.h"
#include "database_editor_plugin_interface.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtCore/QPluginLoader>
#include <QtCore/QPointer>
#include <QtGui/QCloseEvent>
#include <QtWidgets/QAction>
#include <QtWidgets/QWidget>

QUILL_PLUGIN_MANAGER::PLUGIN::PLUGIN() = default;

QUILL_PLUGIN_MANAGER::PLUGIN::~PLUGIN()
{
    qDeleteAll(actions);
}

QUILL_PLUGIN_MANAGER::QUILL_PLUGIN_MANAGER(QObject* parent) : QObject(parent) {}

QUILL_PLUGIN_MANAGER::~QUILL_PLUGIN_MANAGER()
{
    release_all_widgets();
    // Newest first, as they were built. The libraries stay mapped: code of a
    // plugin may still be referenced by objects Qt cleans up at exit, so
    // unmapping it here would risk a crash for no gain.
    for (auto it = m_plugins.rbegin(); it != m_plugins.rend(); ++it)
    {
        PLUGIN& plugin = **it;
        qDeleteAll(plugin.actions);
        plugin.actions.clear();
        delete plugin.instance;
        plugin.instance = nullptr;
    }
}

QString QUILL_PLUGIN_MANAGER::name_of(const PLUGIN& plugin)
{
    return plugin.description.name.isEmpty() ? QFileInfo(plugin.file).fileName() : plugin.description.name;
}

QStringList QUILL_PLUGIN_MANAGER::load_folder(const QString& folder)
{
    QStringList problems;
    const QDir dir(folder);
    if (folder.isEmpty() || !dir.exists())
    {
        problems << QStringLiteral("The plugin folder '%1' does not exist.").arg(QDir::cleanPath(folder));
        return problems;
    }
    int libraries = 0;
    const QFileInfoList entries = dir.entryInfoList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries)
    {
        if (!QLibrary::isLibrary(entry.fileName()))
            continue;
        ++libraries;
        QString error;
        if (!load_file(entry.absoluteFilePath(), error))
            problems << error;
    }
    if (libraries == 0)
        problems << QStringLiteral("There are no plugins in the folder '%1'.").arg(dir.absolutePath());
    return problems;
}

bool QUILL_PLUGIN_MANAGER::load_file(const QString& file, QString& error)
{
    const QString absolute = QFileInfo(file).absoluteFilePath();
    const QString shown = QFileInfo(file).fileName();
    for (const auto& loaded : m_plugins)
    {
        if (loaded->file == absolute)
        {
            error = QStringLiteral("%1: already loaded.").arg(shown);
            return false;
        }
    }

    auto plugin = std::make_unique<PLUGIN>();
    plugin->file = absolute;
    plugin->loader = std::make_unique<QPluginLoader>(absolute);
    QObject* instance = plugin->loader->instance();
    if (!instance)
    {
        error = QStringLiteral("%1 could not be loaded: %2").arg(shown, plugin->loader->errorString());
        return false;
    }
    auto* extension = qobject_cast<APP_EXTENSION_PLUGIN_INTERFACE*>(instance);
    if (!extension)
    {
        error = QStringLiteral("%1 is not a Quill plugin: it does not provide the interface %2.")
                    .arg(shown, QStringLiteral(APP_EXTENSION_PLUGIN_INTERFACE_IID));
        // Nothing of it was used; let it go entirely.
        plugin->loader->unload();
        return false;
    }

    PLUGIN* raw = plugin.get();
    raw->instance = instance;
    raw->extension = extension;
    raw->database = qobject_cast<DATABASE_EDITOR_PLUGIN_INTERFACE*>(instance);
    raw->description = extension->plugin_description();
    raw->actions = extension->create_actions();
    m_plugins.push_back(std::move(plugin));

    connect(&extension->m_aepi_notifier, &AEPI_WIDGET_NOTIFIER::signal_plugin_widget_created, this,
            [this, raw](APP_EXTENSION_PLUGIN_INTERFACE&, std::shared_ptr<QWidget> widget) {
                take_widget(raw, std::move(widget));
            });
    if (raw->database)
    {
        connect(raw->database, &DATABASE_EDITOR_PLUGIN_INTERFACE::database_connected, this,
                [this, raw] { emit logged(QStringLiteral("%1: database connected").arg(name_of(*raw))); });
        connect(raw->database, &DATABASE_EDITOR_PLUGIN_INTERFACE::database_disconnected, this,
                [this, raw] { emit logged(QStringLiteral("%1: database disconnected").arg(name_of(*raw))); });
    }
    emit logged(QStringLiteral("Loaded %1 from %2").arg(name_of(*raw), shown));
    return true;
}

QList<QWidget*> QUILL_PLUGIN_MANAGER::widgets() const
{
    QList<QWidget*> result;
    for (const HANDED_OVER& entry : m_widgets)
        result << entry.widget.get();
    return result;
}

void QUILL_PLUGIN_MANAGER::take_widget(PLUGIN* plugin, std::shared_ptr<QWidget> widget)
{
    if (!widget)
        return;
    for (const HANDED_OVER& entry : m_widgets)
    {
        if (entry.widget == widget)
        {
            widget->raise();
            widget->activateWindow();
            return;
        }
    }
    // The shared pointer owns the widget now; a delete on close would free it
    // under the pointer and crash when the pointer lets go.
    widget->setAttribute(Qt::WA_DeleteOnClose, false);
    if (widget->windowIcon().isNull() && !plugin->description.icon.isNull())
        widget->setWindowIcon(plugin->description.icon);
    widget->installEventFilter(this);
    m_widgets.push_back(HANDED_OVER{plugin, widget});
    widget->show();
    widget->raise();
    widget->activateWindow();
    emit logged(QStringLiteral("%1 opened \"%2\"").arg(name_of(*plugin), widget->windowTitle()));
    emit widget_shown(widget.get());
}

bool QUILL_PLUGIN_MANAGER::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Close || m_releasing_all)
        return QObject::eventFilter(watched, event);
    for (const HANDED_OVER& entry : m_widgets)
    {
        if (entry.widget.get() != watched)
            continue;
        if (!entry.plugin->extension->can_close())
        {
            event->ignore();
            emit logged(QStringLiteral("%1 keeps \"%2\" open")
                            .arg(name_of(*entry.plugin), entry.widget->windowTitle()));
            return true;
        }
        // Dropped once the widget has handled its close: it may still refuse,
        // and it must not be deleted inside its own event handler.
        QPointer<QWidget> closing(entry.widget.get());
        QMetaObject::invokeMethod(
            this,
            [this, closing] {
                if (closing && !closing->isVisible())
                    release(closing);
            },
            Qt::QueuedConnection);
        break;
    }
    return QObject::eventFilter(watched, event);
}

void QUILL_PLUGIN_MANAGER::release(QWidget* widget)
{
    for (auto it = m_widgets.begin(); it != m_widgets.end(); ++it)
    {
        if (it->widget.get() != widget)
            continue;
        HANDED_OVER entry = std::move(*it);
        m_widgets.erase(it);
        widget->removeEventFilter(this);
        entry.plugin->extension->on_plugin_widget_to_be_destroyed(*widget);
        entry.widget.reset();
        entry.plugin->extension->on_plugin_widget_destroyed(widget);
        emit widget_released();
        return;
    }
}

bool QUILL_PLUGIN_MANAGER::can_close(QString& refusing)
{
    for (const auto& plugin : m_plugins)
    {
        if (!plugin->extension->can_close())
        {
            refusing = name_of(*plugin);
            return false;
        }
    }
    return true;
}

void QUILL_PLUGIN_MANAGER::release_all_widgets()
{
    m_releasing_all = true;
    while (!m_widgets.empty())
    {
        QWidget* widget = m_widgets.back().widget.get();
        widget->hide();
        release(widget);
    }
    m_releasing_all = false;
}
