#include "test_folder.h"

#include "test_helpers.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace
{
QString template_path()
{
    const QString base = qEnvironmentVariable("ORBIN_TEST_TMP");
    if (!base.isEmpty() && QFileInfo(base).isDir())
        return base + QStringLiteral("/folder-XXXXXX");
    return QDir::tempPath() + QStringLiteral("/orbin-test-XXXXXX");
}
} // namespace

TEST_FOLDER::TEST_FOLDER() : m_dir(template_path()) {}

QString TEST_FOLDER::file(const QString& relative) const
{
    return path() + QLatin1Char('/') + relative;
}

QString TEST_FOLDER::make_folder(const QString& relative) const
{
    const QString absolute = file(relative);
    return QDir().mkpath(absolute) ? absolute : QString();
}

QString TEST_FOLDER::write(const QString& relative, const QByteArray& contents) const
{
    const QString absolute = file(relative);
    return ORBIN_TEST::write_file(absolute, contents) ? absolute : QString();
}
