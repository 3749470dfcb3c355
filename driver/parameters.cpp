// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the host's configuration may ask before anything is set up: fixed answers that read no
// state.

#include "driver/intf.h"

void intf_getDriverParameter(QString& text)
{
    text = QLatin1String("0,"
                         "9600,7,EVEN,1,"      // the line settings of the FX programming port
                         "1,2,"                // host settings
                         "192.168.0.10,8888,"  // address and port for a networked link
                         "mitsubishi_fx2n,"
                         "X,Y,M,D,SM,SD,T,C,TV,S,CV,32CV");  // not the order of the catalogue
}

void intf_getDriverPropertyPage(QString& text)
{
    text = QLatin1String("0_0");
}

void intf_SetDriverPropertyPage(QString& text)
{
    text = QLatin1String("");
}

void intf_getProtocolType(int* type)
{
    if (type != nullptr)
        *type = 0;
}
