// A valid Qt plugin that is not a Quill plugin: it provides no host interface.
#include <QtCore/QObject>
#include <QtCore/QtPlugin>

class NOT_AN_EXTENSION_PLUGIN : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.SomethingElse/1.0")
};

#include "not_an_extension_plugin.moc"
