#include "packagedfile.h"

#include <algorithm>

#include <QCryptographicHash>
#include <QFile>

#include "common/files.h"

namespace tools {

std::string sha256Of(const std::string& path)
{
    QFile file(QString::fromStdString(path));
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) return {};
    return hash.result().toHex().toStdString();
}

std::string complaintAbout(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    const std::string name = parts.baseName + parts.extension;
    const auto known = std::find_if(packagedFiles.begin(), packagedFiles.end(),
                                    [&](const PACKAGEDFILE& file) { return file.name == name; });
    if (known == packagedFiles.end()) return path + ": not a file that this converter knows";
    const std::string hash = sha256Of(path);
    if (hash.empty()) return path + ": can't be read";
    if (hash.starts_with(known->sha256)) return {};
    return path + ": not the known edition (its SHA-256 begins with " + hash.substr(0, 16) + ", expected " +
           std::string(known->sha256) + ")";
}

} // namespace tools
