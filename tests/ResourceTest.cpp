#include "visa/ResourceExpression.h"
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
        row("socket", "TCPIP::a::5025::socket", "TCPIP0::a::5025::SOCKET");
        row("interface itself", "GPIB0::INTFC", "GPIB0::INTFC");
        row("longer interface", "gpib-vxi2::9", "GPIB-VXI2::9::INSTR");
        row("no interface", "scope");
        row("empty host", "TCPIP0::::INSTR");
        row("board is no number", "TCPIPx::a::INSTR");
        row("board beyond 16 bits", "TCPIP65536::a::INSTR");
        row("blank in the host", "TCPIP0::a b::INSTR");
        row("too many parts", "TCPIP0::a::b::c::INSTR");
        row("port is no number", "TCPIP0::a::x::SOCKET");
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
        QTest::newRow("letter case") << "tcpip?*instr"
                                     << "matches";
        QTest::newRow("any character") << "?*::[^k]\\-b?c::?*"
                                       << "matches";
        QTest::newRow("alternatives") << "?*(x|a-[a-c])[.]+c::?*|y"
                                      << "matches";
        QTest::newRow("nested repetitions") << "((((?*)*)+)*)+"
                                            << "matches";
        QTest::newRow("part of the text") << "?*::INST"
                                          << "differs";
        QTest::newRow("dot for itself") << "TCPIP0.?*"
                                        << "differs";
        QTest::newRow("caret for itself") << "^?*"
                                          << "differs";
        QTest::newRow("question mark for itself") << "TCPIP0\\?*"
                                                  << "differs";
        QTest::newRow("range backwards") << "TCPIP0[z-a]::?*"
                                         << "malformed";
        QTest::newRow("nothing to repeat") << "*"
                                           << "malformed";
        QTest::newRow("backslash at the end") << "?*\\"
                                              << "malformed";
        QTest::newRow("condition") << "?*{VI_ATTR_INTF_NUM == 0}"
                                   << "malformed";
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
