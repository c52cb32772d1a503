#include "visa/lan/HostsFile.h"

#include "visa/ResourceName.h"

#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

namespace lan {

std::vector<std::string> hostsFileResources()
{
    // The program's own, whatever process has loaded this library.
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QSettings file(directory + "/Varnholt/Orvanta/instruments.ini", QSettings::IniFormat);
    file.beginGroup("Instruments");
    std::vector<std::string> resources;
    for (const QString &key : file.childKeys()) {
        const QString resource = "TCPIP::" + file.value(key).toString() + "::INSTR";
        if (const auto name = visa::parseResourceName(resource.toStdString())) {
            resources.push_back(name->full);
        }
    }
    return resources;
}

} // namespace lan
