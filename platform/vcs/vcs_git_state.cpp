#include "vcs_git_state.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

bool VCS_GIT_STATE::load(QString& error, const QString& git_dir)
{
    directory = git_dir + QStringLiteral("/orbin");
    if (!QDir().mkpath(directory))
    {
        error = QStringLiteral("Cannot create the folder '%1'").arg(directory);
        return false;
    }
    if (!lock)
    {
        lock = std::make_unique<QLockFile>(directory + QStringLiteral("/state.lock"));
        lock->setStaleLockTime(0);
        if (!lock->tryLock(10000))
        {
            error = QStringLiteral("The workspace state '%1' is locked by another process").arg(directory);
            lock.reset();
            return false;
        }
    }

    opened.clear();
    have.clear();
    unresolved.clear();
    pending.clear();
    last_change = 0;

    QFile file(directory + QStringLiteral("/state.json"));
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly))
    {
        error = QStringLiteral("Cannot read '%1': %2").arg(file.fileName(), file.errorString());
        return false;
    }
    QJsonParseError parse_error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parse_error);
    if (document.isNull() || !document.isObject())
    {
        error = QStringLiteral("The workspace state '%1' is damaged: %2")
                    .arg(file.fileName(), parse_error.errorString());
        return false;
    }
    const QJsonObject root = document.object();
    last_change = root.value(QStringLiteral("last_change")).toInt();
    const QJsonObject opened_object = root.value(QStringLiteral("opened")).toObject();
    for (auto it = opened_object.begin(); it != opened_object.end(); ++it)
    {
        const QJsonObject entry = it.value().toObject();
        opened.insert(it.key(), OPENED{entry.value(QStringLiteral("action")).toString(),
                                       entry.value(QStringLiteral("change")).toInt()});
    }
    const QJsonObject have_object = root.value(QStringLiteral("have")).toObject();
    for (auto it = have_object.begin(); it != have_object.end(); ++it)
        have.insert(it.key(), it.value().toString());
    const QJsonObject unresolved_object = root.value(QStringLiteral("unresolved")).toObject();
    for (auto it = unresolved_object.begin(); it != unresolved_object.end(); ++it)
    {
        const QJsonObject entry = it.value().toObject();
        unresolved.insert(it.key(), UNRESOLVED{entry.value(QStringLiteral("base")).toString(),
                                               entry.value(QStringLiteral("theirs")).toString()});
    }
    const QJsonObject pending_object = root.value(QStringLiteral("pending")).toObject();
    for (auto it = pending_object.begin(); it != pending_object.end(); ++it)
    {
        const QJsonObject entry = it.value().toObject();
        pending.insert(it.key().toInt(), PENDING{entry.value(QStringLiteral("description")).toString()});
    }
    return true;
}

bool VCS_GIT_STATE::save(QString& error) const
{
    QJsonObject root;
    root.insert(QStringLiteral("format"), 1);
    root.insert(QStringLiteral("last_change"), last_change);
    QJsonObject opened_object;
    for (auto it = opened.cbegin(); it != opened.cend(); ++it)
    {
        QJsonObject entry;
        entry.insert(QStringLiteral("action"), it.value().action);
        entry.insert(QStringLiteral("change"), it.value().change);
        opened_object.insert(it.key(), entry);
    }
    root.insert(QStringLiteral("opened"), opened_object);
    QJsonObject have_object;
    for (auto it = have.cbegin(); it != have.cend(); ++it)
        have_object.insert(it.key(), it.value());
    root.insert(QStringLiteral("have"), have_object);
    QJsonObject unresolved_object;
    for (auto it = unresolved.cbegin(); it != unresolved.cend(); ++it)
    {
        QJsonObject entry;
        entry.insert(QStringLiteral("base"), it.value().base);
        entry.insert(QStringLiteral("theirs"), it.value().theirs);
        unresolved_object.insert(it.key(), entry);
    }
    root.insert(QStringLiteral("unresolved"), unresolved_object);
    QJsonObject pending_object;
    for (auto it = pending.cbegin(); it != pending.cend(); ++it)
    {
        QJsonObject entry;
        entry.insert(QStringLiteral("description"), it.value().description);
        pending_object.insert(QString::number(it.key()), entry);
    }
    root.insert(QStringLiteral("pending"), pending_object);

    QSaveFile file(directory + QStringLiteral("/state.json"));
    if (!file.open(QIODevice::WriteOnly))
    {
        error = QStringLiteral("Cannot write '%1': %2").arg(file.fileName(), file.errorString());
        return false;
    }
    file.write(QJsonDocument(root).toJson(QJsonDocument::Indented));
    if (!file.commit())
    {
        error = QStringLiteral("Cannot write '%1': %2").arg(file.fileName(), file.errorString());
        return false;
    }
    return true;
}

void VCS_GIT_STATE::release()
{
    if (lock)
        lock->unlock();
    lock.reset();
}
