// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tests/tools/fxview/view_support.h"

#include "tests/tools/support/loaded_driver.h"
#include "tools/tags/tag_file.h"

#include <QTemporaryFile>

namespace view_tests {

using fxview::Quality;
using fxview::Reading;

QVector<fxtools::Tag> tagsOf(const QByteArray& rows)
{
    QTemporaryFile file;
    file.open();
    file.write("name,address,type,scale,offset,unit,deadband,period_ms,access,min,max,alarm_low,"
               "alarm_high,link,description\n" +
               rows);
    file.close();
    return fxtools::readTags(file.fileName(), tool_tests::catalogue());
}

QVector<fxtools::Tag> someTags()
{
    return tagsOf("oven.temp,D100,signed,0.1,0,°C,,,,0,200,10,180,,Temperature of the oven\n"
                  "motor.run,M0,,,,,,,,,,,,,\n"
                  "door,X0,,,,,,,,,,,,,Closed\n"
                  "recipe.name,D200:4,text,,,,,,,,,,,,\n"
                  "pump10,D10,signed,,,,,500,ro,,,,,,\n"
                  "pump2,D2,signed,,,bar,,,,,,,,,\n");
}

Reading good(int tag, const QJsonValue& value, qint64 timeMs)
{
    return {tag, Quality::Good, {}, value, value, timeMs};
}

Reading stale(int tag, const QString& reason, qint64 timeMs)
{
    return {tag, Quality::Stale, reason, {}, {}, timeMs};
}

Reading bad(int tag, const QString& reason, qint64 timeMs)
{
    return {tag, Quality::Bad, reason, {}, {}, timeMs};
}

}  // namespace view_tests
