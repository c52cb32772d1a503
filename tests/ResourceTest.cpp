#include "visa/ResourceName.h"

#include <QtTest>

/// Resource names and the expressions that find them.
class ResourceTest : public QObject
{
    Q_OBJECT

private slots:
    void names_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("canonical"); // empty when the name is malformed
        const auto row = [](const char *title, const QString &name, const char *canonical = "") {
            QTest::newRow(title) << name << canonical;
        };
        row("short", "TCPIP::scope", "TCPIP0::scope::inst0::INSTR");
        row("full", "tcpip7::a-b_c.D::gpib0,5::instr", "TCPIP7::a-b_c.D::gpib0,5::INSTR");
        row("pasted", " \tTCPIP0::a::INSTR\r\n", "TCPIP0::a::inst0::INSTR");
        row("another interface", "GPIB0::7::INSTR");
        row("another class", "TCPIP0::a::5025::SOCKET");
        row("empty host", "TCPIP0::::INSTR");
        row("board beyond 16 bits", "TCPIP65536::a::INSTR");
        row("blank behind the host", "TCPIP0::a ::INSTR");
        row("too long in canonical form", "TCPIP::" + QString(235, 'a'));
    }

    void names()
    {
        QFETCH(const QString, name);
        const auto parsed = visa::parseResourceName(name.toStdString());
        QTEST(parsed ? QString::fromStdString(parsed->full) : "", "canonical");
    }

    void expressions_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("outcome"); // with "TCPIP0::a-b.c::INSTR"
        const auto row = [](const char *title, const char *expression, const char *outcome) {
            QTest::newRow(title) << expression << outcome;
        };
        row("letter case", "tcpip?*instr", "matches");
        row("any character", "?*::[^k]\\-b?c::?*", "matches");
        row("alternatives", "?*(x|a-[a-c])[.]+c::?*|y", "matches");
        row("part of the text", "?*::INST", "differs");
        row("dot for itself", "TCPIP0.?*", "differs");
        row("caret for itself", "^?*", "differs");
        row("question mark for itself", "TCPIP0\\?*", "differs");
        row("malformed", "*", "malformed");
        row("condition", "?*{VI_ATTR_INTF_NUM == 0}", "malformed");
    }

    void expressions()
    {
        QFETCH(const QString, expression);
        const auto matches =
            visa::matchesExpression(expression.toStdString(), "TCPIP0::a-b.c::INSTR");
        const QString outcome = matches.value_or(false) ? "matches" : "differs";
        QTEST(matches ? outcome : "malformed", "outcome");
    }
};

QTEST_GUILESS_MAIN(ResourceTest)
#include "ResourceTest.moc"
