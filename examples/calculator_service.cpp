// SPDX-License-Identifier: Apache-2.0
// A service that takes requests: it adds and multiplies. It owns the object that its clients write their requests to.
//
//     eval "$(kelp-device start)"
//     calculator_service & calculator_client add multiply
//
// prints "@calculator.1 came", a line for each request that it answers, and "@calculator.1 went". It serves any number
// of clients until the device stops. Everybody can see how many requests it has answered, as long as it runs:
//
//     kelp-device pps watch /services/calculator-status

#include <kelp/PpsObject>
#include <kelp/PpsOpenMode>

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>

#include <cerrno>
#include <cstdio>

using kelp::PpsAttributeFlag;
using kelp::PpsObject;
using kelp::PpsOpenMode;

namespace {

void say(const QString &line)
{
    QTextStream out(stdout);
    out << line << '\n';
}

QVariantMap refusal(int error, const QString &why)
{
    return {{QStringLiteral("err"), error}, {QStringLiteral("errstr"), why}};
}

// The "dat" of the answer, or "err" and "errstr" in its place.
QVariantMap calculate(const QString &operation, const QVariantMap &operands)
{
    const QVariant a = operands.value(QStringLiteral("a"));
    const QVariant b = operands.value(QStringLiteral("b"));
    if (!a.canConvert<double>() || !b.canConvert<double>()) {
        return refusal(EINVAL, QStringLiteral("two numbers, a and b, are needed"));
    }
    const bool adds = operation == QLatin1String("add");
    if (!adds && operation != QLatin1String("multiply")) {
        return refusal(ENOTSUP, QStringLiteral("only add and multiply are served"));
    }
    const double result = adds ? a.toDouble() + b.toDouble() : a.toDouble() * b.toDouble();
    return {{QStringLiteral("dat"), QVariantMap{{QStringLiteral("result"), result}}}};
}

// The answer goes to the one client under whose name the request came.
void answer(PpsObject &service, const QString &client, const QVariantMap &request)
{
    const QString operation = request.value(QStringLiteral("msg")).toString();
    QVariantMap reply = calculate(operation, request.value(QStringLiteral("dat")).toMap());
    reply.insert(QStringLiteral("res"), operation);
    reply.insert(QStringLiteral("id"), request.value(QStringLiteral("id")));
    say(QStringLiteral("%1 asked to %2").arg(client, operation));
    if (!service.write(PpsObject::encode({{client, reply}}))) {
        say(QStringLiteral("%1 got no answer: %2").arg(client, service.errorString())); // it may have gone
    }
}

// Each read gives one message. Returns whether it was a request.
bool serve(PpsObject &service)
{
    bool ok = false;
    const QByteArray text = service.read(&ok);
    if (!ok) {
        say(QLatin1String("the device has gone: ") + service.errorString());
        QCoreApplication::quit();
        return false;
    }
    kelp::PpsAttribute client; // "@calculator.1", with flags when it comes and goes
    (void)PpsObject::decodeWithFlags(text, &client, nullptr);
    if (client.flags().testFlag(PpsAttributeFlag::Created)) {
        say(client.toString() + QLatin1String(" came"));
    } else if (client.flags().testFlag(PpsAttributeFlag::Deleted)) {
        say(client.toString() + QLatin1String(" went"));
    } else {
        answer(service, client.toString(), PpsObject::decode(text).value(client.toString()).toMap());
        return true;
    }
    return false;
}

bool publishStatus(PpsObject &status, int answered)
{
    return status.write(PpsObject::encode({{QStringLiteral("answered"), answered}}));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    PpsObject service(QStringLiteral("/pps/services/calculator?server"));
    PpsObject status(QStringLiteral("/pps/services/calculator-status?nopersist")); // goes with this process
    int answered = 0;
    QObject::connect(&service, &PpsObject::readyRead, &service, [&] {
        if (serve(service) && !publishStatus(status, ++answered)) {
            say(QLatin1String("cannot publish: ") + status.errorString());
        }
    });
    if (!service.open(PpsOpenMode::PublishSubscribe | PpsOpenMode::Create)) {
        say(QLatin1String("cannot serve: ") + service.errorString());
        return 1;
    }
    if (!status.open(PpsOpenMode::Publish | PpsOpenMode::Create) || !publishStatus(status, answered)) {
        say(QLatin1String("cannot publish: ") + status.errorString());
        return 1;
    }
    say(QStringLiteral("ready"));
    return app.exec();
}
