// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// The model's set-up: the property string, the reset of a connection, the fixed texts, and the
// recipe list of this link.

#include "tests/model/model_driver.h"

#include <QStringList>

#include <climits>

bool modelIsBit(const QString& type)
{
    return type == "X" || type == "Y" || type == "M" || type == "S" || type == "SM" ||
           type == "T" || type == "C";
}

bool modelIsWord(const QString& type)
{
    return type == "D" || type == "SD" || type == "TV" || type == "CV";
}

bool modelFitsInt(long long number)
{
    return number >= INT_MIN && number <= INT_MAX;
}

int modelNumbered(int start, int count)
{
    while (count > 0 && !modelFitsInt(static_cast<long long>(start) + count - 1))
        --count;
    return count;
}

QString modelNumberText(const QString& type, int number)
{
    return QString::number(static_cast<unsigned int>(number), type == "X" || type == "Y" ? 8 : 10);
}

void ModelDriver::getDriverParameter(QString& text) const
{
    text = "0,9600,7,EVEN,1,1,2,192.168.0.10,8888,mitsubishi_fx2n,X,Y,M,D,SM,SD,T,C,TV,S,CV,32CV";
}

void ModelDriver::getDriverPropertyPage(QString& text) const
{
    text = "0_0";
}

void ModelDriver::SetDriverPropertyPage(QString& text) const
{
    text = "";
}

void ModelDriver::getProtocolType(int* type) const
{
    if (type)
        *type = 0;
}

void ModelDriver::setAddrValueChangeCallBack(Callback callback)
{
    valueChangeCallback = callback;
}

int ModelDriver::initProperty(unsigned char* memory, unsigned int context, unsigned short* words,
                              int* status, const char* propertyString, QMutex* mutex)
{
    if (status)
        *status = 0;
    const QStringList parts = QString::fromLatin1(propertyString).split('#');
    if (parts.size() > 4) {
        linkNo = parts[0].toInt();
        cacheOnlyWrites = parts[1].toInt();
        propertyField2 = parts[2].toInt();
        failLimit = parts[3].toInt();
        frameWordLimit = parts[4].toInt();
        propertyField5 = parts.size() == 5 ? 0 : parts[5].toInt();
    }
    hostMemory = memory;
    hostContext = context;
    recipeWords = words;
    hostMutex = mutex;
    readList.clear();
    writeList.clear();
    conditionReadList.clear();
    dataAreas.clear();
    operationKind = 0;
    burstCount = 0;
    spareCounter0 = 0;
    failCount = 0;
    lastExchangeFailed = 0;
    maxWordsPerFrame = frameWordLimit;
    const long long bits = static_cast<long long>(frameWordLimit) * 8;
    maxBitsPerFrame = static_cast<int>(bits > INT_MAX ? INT_MAX : bits < INT_MIN ? INT_MIN : bits);
    frames.clear();
    spareCounter1 = 0;
    propertyInitialised = 1;
    return 1;
}

int ModelDriver::setRcpAddress(QVector<_RCP_VAR_PRO>& list)
{
    recipeVars.clear();
    for (int i = 0; i < list.size(); ++i) {
        if (list[i].linkNo == linkNo)
            recipeVars.push_back(list[i]);
    }
    return static_cast<int>(recipeVars.size());
}
