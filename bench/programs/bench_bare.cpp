// SPDX-License-Identifier: Apache-2.0
// The peer of an application in the start-up benchmark: enters Qt's event loop and leaves it at once.

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QTimer::singleShot(0, &application, &QCoreApplication::quit);
    return application.exec();
}
