#include "frame/ProgramInfo.h"

#include "frame/Version.h"

namespace vinora {

QString programCaption()
{
    return QStringLiteral("vinora ") + QString::number(kVersionMajor) + u'.' + QString::number(kVersionMinor);
}

QString programBuildText()
{
    return programCaption() + QStringLiteral(" build ") + QString::number(kVersionRevision);
}

QString faultLogVersion()
{
    return QString::number(kVersionMajor) + u'.' + QString::number(kVersionMinor) + QStringLiteral(" b") +
           QString::number(kVersionRevision);
}

} // namespace vinora
