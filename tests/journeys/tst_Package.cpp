// SPDX-License-Identifier: Apache-2.0
// An application that has been started where its package was unpacked.

#include "Journey.h"

#include <fstream>

namespace kelp::test {

class Package : public Journey
{
};

TEST_F(Package, ItsTitleAndVersionShow)
{
    const std::string package = folder() + "/package";
    std::filesystem::create_directories(package + "/app/META-INF");
    const std::string manifest = package + "/app/META-INF/MANIFEST.MF";
    const std::string sections = "Archive-Manifest-Version: 1.1\n\nPackage-Type: application\n"
                                 "Package-Version: 1.2.3.4\n\n";
    std::ofstream(manifest) << sections << "Application-Name: My Not\n es\n";
    const std::vector<std::string> start = {"sh", "-c", "cd \"$0\" && exec \"$1\" obey", package,
                                            CLIENT_PROGRAM};
    held({"start"});
    {
        Command application(start, {{"KELP_DEVICE", home()}});
        held({"wait", "title=My Notes", "version=1.2.3.4"});
        EXPECT_NE(held({"state"}).find("  My Notes 1.2.3.4  "), std::string::npos);
        EXPECT_NE(held({"state", "--json"}).find("\"title\":\"My Notes\",\"version\":\"1.2.3.4\""),
                  std::string::npos);
    }
    held({"wait", "gone"});

    std::ofstream(manifest) << sections << "Application-Name:My Notes\n";
    Command application(start, {{"KELP_DEVICE", home()}});
    held({"wait", "title=null", "version=null"});
    std::ifstream trace(home() + "/trace.log");
    const std::string lines((std::istreambuf_iterator<char>(trace)), {});
    EXPECT_NE(lines.find("manifest not used: app/META-INF/MANIFEST.MF: line 6: "), std::string::npos)
        << lines;
}

} // namespace kelp::test
