// SPDX-License-Identifier: MIT
// A host's integration test in miniature: the test helpers of the package's testing component.
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/framefactory.h>

#include <QCoreApplication>
#include <QTest>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const auto frame = vexa::testing::FrameFactory::solid(8, 4, 255, 0, 0);
    vexa::testing::FakeInputSourceMgr manager;
    if (!frame || frame->getBuffer()->stride() != 32 || !manager.getResources().empty()) {
        std::fprintf(stderr, "testinghelpers: the helpers did not answer\n");
        return 1;
    }
    QTest::qWait(1);
    std::printf("testinghelpers: the helpers answered\n");
    return 0;
}
