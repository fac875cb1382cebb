#pragma once

#include "ConsoleLines.h"
#include "Files.h"
#include "Rows.h"
#include "ZELKBundle.h"
#include "ZELKLWAEvent.h"

#include <QTemporaryDir>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

/// The agent's bundle as it was built.
inline std::shared_ptr<const ZELKBundle> agentBundle()
{
    return std::make_shared<const ZELKBundle>(QString::fromLocal8Bit(AGENT_BUNDLE));
}

inline QString agentVersion()
{
    return agentBundle()->infoDictionary().string(u"CFBundleVersion"_s);
}

/// The records that a real system wrote at its start and its end.
inline QString realAccounting()
{
    return QStringLiteral(ZELK_TEST_DATA "/one-boot.wtmp");
}

inline QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}
