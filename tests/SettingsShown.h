#pragma once

#include "app/Globals.h"
#include "instrument/NumberText.h"

#include <QtWidgets>

/// All that the window keeps in its settings, as it shows it: texts, check boxes, type.
inline QStringList shown(const QWidget &window)
{
    QStringList values;
    for (const char *name : {"OsIp", "SaIp", "VaIp", "OsTrgLvl", "SaFrq", "VaThres"}) {
        values << window.findChild<QLineEdit *>(name)->text();
    }
    for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaRst", "VaHdmi", "SaveData"}) {
        values << QString::number(window.findChild<QCheckBox *>(name)->isChecked());
    }
    return values << QString::number(window.findChild<QComboBox *>("OsTyp")->currentIndex());
}

/// What of the window cannot be used after a settings file; nothing is the rule.
inline QString unusable(const QWidget &window)
{
    QStringList wrong;
    const auto expect = [&wrong](bool holds, const char *name) {
        if (!holds) {
            wrong << name;
        }
    };
    for (const char *name : {"OsTrgLvl", "SaFrq", "VaThres"}) {
        const QString text = window.findChild<QLineEdit *>(name)->text();
        bool isNumber = false;
        expect(numberText(text.toDouble(&isNumber)) == text && isNumber, name);
    }
    expect(OsTyp >= 0 && window.findChild<QComboBox *>("OsTyp")->currentIndex() == OsTyp, "OsTyp");
    expect(window.findChild<QCheckBox *>("VaHdmi")->isChecked() == VaHdmi, "VaHdmi");
    for (const char *name : {"VaInit", "VaIp", "VaRst", "VaThres", "VaThresLbl"}) {
        expect(window.findChild<QWidget *>(name)->isEnabled() == VaHdmi, name);
    }
    for (const char *name : {"OsInit", "SaInit", "OsIp", "SaIp", "MeasCnt"}) {
        expect(window.findChild<QWidget *>(name)->isEnabled(), name);
    }
    return wrong.join(' ');
}
