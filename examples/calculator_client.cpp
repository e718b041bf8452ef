// SPDX-License-Identifier: Apache-2.0
// A client of the example calculator_service: it sends a request for each of its arguments, with the operands 6 and 7,
// and waits for the answers.
//
//     eval "$(kelp-device start)"
//     calculator_service & calculator_client add multiply divide
//
// prints "add: 13" and "multiply: 42", then why there is no answer to the third. The exit code is 0 if all was
// answered.

#include <kelp/PpsObject>
#include <kelp/PpsOpenMode>

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

#include <cstdio>
#include <cstring>

using kelp::PpsObject;

namespace {

void say(const QString &line)
{
    QTextStream out(stdout);
    out << line << '\n';
}

// The identifier is a request's place among the arguments: answers tell by it which one they belong to.
bool sendRequests(PpsObject &calculator, const QStringList &operations)
{
    const QVariantMap operands{{QStringLiteral("a"), 6}, {QStringLiteral("b"), 7}};
    for (int place = 0; place < operations.size(); ++place) {
        const int error = calculator.writeMessage(operations.at(place), QString::number(place), operands);
        if (error != 0) {
            say(QLatin1String("cannot ask: ") + QString::fromLocal8Bit(std::strerror(error)));
            return false;
        }
    }
    return true;
}

// Whether the request was granted.
bool showAnswer(const QVariantMap &answer, const QStringList &operations)
{
    const QString operation = operations.value(answer.value(QStringLiteral("id")).toInt());
    if (answer.contains(QStringLiteral("err"))) {
        say(operation + QLatin1String(": ") + answer.value(QStringLiteral("errstr")).toString());
        return false;
    }
    const QVariantMap data = answer.value(QStringLiteral("dat")).toMap();
    say(operation + QLatin1String(": ") + data.value(QStringLiteral("result")).toString());
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList operations = app.arguments().mid(1);
    PpsObject calculator(QStringLiteral("/pps/services/calculator"));
    auto unanswered = operations.size();
    bool allGranted = true;
    QObject::connect(&calculator, &PpsObject::readyRead, &calculator, [&] {
        bool ok = false;
        const QVariantMap objects = PpsObject::decode(calculator.read(&ok));
        const QVariantMap answer = objects.value(QStringLiteral("@calculator")).toMap();
        if (!ok || answer.isEmpty()) { // the device or the service
            say(QStringLiteral("the calculator has gone"));
            QCoreApplication::exit(1);
            return;
        }
        allGranted &= showAnswer(answer, operations);
        if (--unanswered == 0) {
            QCoreApplication::exit(allGranted ? 0 : 1);
        }
    });
    if (!calculator.open(kelp::PpsOpenMode::PublishSubscribe)) {
        say(QLatin1String("no calculator: ") + calculator.errorString());
        return 1;
    }
    if (operations.isEmpty()) {
        return 0; // nothing to wait for
    }
    return sendRequests(calculator, operations) ? app.exec() : 1;
}
