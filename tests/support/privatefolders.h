// SPDX-FileCopyrightText: 2026 The Sendrivo authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTemporaryDir>

/// Home, settings, temporary and working folder of one test program, all inside one private folder
/// that disappears with the object. Construct it before the application object, so that nothing of
/// the person who runs the tests is read or written.
class PrivateFolders
{
public:
    PrivateFolders();
    ~PrivateFolders();
    Q_DISABLE_COPY_MOVE(PrivateFolders)

private:
    QTemporaryDir root;
    QString startFolder;
};

/// main() of a test program: private folders, no visible windows unless the platform is chosen by
/// the environment, then the tests of TestClass with the given application class.
#define SENDRIVO_TEST_MAIN(TestClass, ApplicationClass)                                            \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        const PrivateFolders folders;                                                              \
        ApplicationClass application(argc, argv);                                                  \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
