// The texts of drags, made and taken apart.

#include "core/fnkutil.h"
#include "model/fnkfiles-dragtext.h"
#include "tabletest.h"

namespace {

using DragText = TableTest;
using Paths = std::vector<std::string>;

TEST_F(DragText, WhatIsMadeIsTakenApart)
{
    for (const Paths& paths : {Paths{"/a"}, Paths{"/a b", "/c d/"}, Paths{"/one", "/\xFF\n", "/three/"}}) {
        EXPECT_EQ(SplitDragText(MakeDragText(paths)), paths);
    }
    const Paths made = {files.File("a b%\xFF.txt"), files.Directory("d") + "/", files.Path()};
    EXPECT_EQ(SplitUriList(MakeUriList(made)), made);
}

TEST_F(DragText, ListsOfOthersAreTakenWholeOrNotAtAll)
{
    const std::string file = files.File("x y");
    const std::string directory = files.Directory("d");
    const std::string uri = "file://" + files.Path() + "x%20y";
    char host[256] = "";
    gethostname(host, sizeof host - 1);
    const std::pair<std::string, Paths> lists[] = {
        {"# comment\r\n" + uri + "\r\nfile://" + directory + "\r\n", {file, directory + "/"}},
        {"file://localhost" + uri.substr(7), {file}},
        {"file://" + std::string(host) + uri.substr(7), {file}},
        {uri + "\r\n" + '\0', {file}},
        {"# only\r\n", {}},
        {uri + "\r\nhttp://example.org/x\r\n", {}},
        {uri + "\r\nfile://elsewhere.example/x\r\n", {}},
        {uri + "\r\nnot a uri", {}},
        {uri + "%00", {}}};
    for (const auto& [list, paths] : lists) {
        EXPECT_EQ(SplitUriList(list), paths) << list;
    }
    const std::string nul(1, '\0');
    const std::pair<std::string, Paths> texts[] = {{uri + "\r\n", {file}},
                                                   {"file:/a file:/b/" + nul, {"/a", "/b/"}},
                                                   {"file:", {}},
                                                   {"file:/x file:relative", {}},
                                                   {" file:/x", {}},
                                                   {"file:/" + std::string(kMaxPathBytes, 'x'), {}},
                                                   {"file:/x" + nul + "y", {}}};
    for (const auto& [text, paths] : texts) {
        EXPECT_EQ(SplitDragText(text), paths) << text.substr(0, 30);
    }
}

}  // namespace
