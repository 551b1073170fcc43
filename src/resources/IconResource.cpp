// SPDX-License-Identifier: MIT
#include "TorvalenUIExport.h"

#ifdef TORVALEN_STATIC

#include <QDir>

int RegisterTorvalenIcons()
{
    Q_INIT_RESOURCE(torvalen_icons);
    return 1;
}

#endif
