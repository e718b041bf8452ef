// SPDX-License-Identifier: Apache-2.0
// See DataSets.h.

#include "DataSets.h"

namespace kelp::bench {

namespace {

QVariantMap record(int number)
{
    return {{"available", number % 3 != 0},
            {"id", "item-" + QString::number(1000 + number * 37)},
            {"priority", qlonglong(number * 7 % 11)},
            {"ratio", 0.125 * number + 0.001},
            {"title", QString("Entry number %1 of the list, with a caption").arg(number)}};
}

QVariantMap settingsGroup(int number)
{
    QVariantMap group{
        {"limits", QVariantMap{{"high", 99.5 + number}, {"low", -40.25 - number}, {"unit", "degrees"}}},
        {"tags", QVariantList{"alpha", "beta", qlonglong(number), number % 2 == 0}},
        {"owner", record(number)}};
    for (int i = 0; i < 6; i += 2) {
        group.insert(QString("setting%1").arg(i), QString("value of setting %1/%2").arg(number).arg(i));
        group.insert(QString("setting%1").arg(i + 1), qlonglong(number * 1000 + i));
    }
    return group;
}

QVariantMap placedRecord(int list, int number)
{
    QVariantMap placed = record(list * 100 + number);
    placed.insert("position", QVariantMap{{"latitude", 48.137154 + number * 0.01},
                                          {"longitude", 11.576124 - number * 0.01},
                                          {"name", QString("Place %1").arg(number)}});
    placed.insert("samples",
                  QVariantList{qlonglong(number), qlonglong(number * number), number * 0.5, number * 0.25});
    return placed;
}

} // namespace

QVariantMap flatMap()
{
    return {{"accuracy", 12.5},
            {"description",
             "Battery pack, left bay, second slot; last calibrated at the factory in spring of the year"},
            {"enabled", true},
            {"identifier", "org.example.sensors.power.battery-0"},
            {"level", qlonglong(87)},
            {"state", "discharging"},
            {"timestamp", qlonglong(1321873200123)},
            {"vendor", "Example Instruments Ltd."}};
}

QVariantMap nestedMap()
{
    QVariantMap map;
    for (int i = 0; i < 11; ++i) {
        map.insert(QString("group%1").arg(i), settingsGroup(i));
    }
    return map;
}

QVariantMap listMap()
{
    QVariantMap map{{"count", qlonglong(136)}, {"source", "catalogue"}};
    for (int i = 0; i < 4; ++i) {
        QVariantList list;
        for (int k = 0; k < 34; ++k) {
            list.append(placedRecord(i, k));
        }
        map.insert(QString("list%1").arg(i), list);
    }
    return map;
}

} // namespace kelp::bench
