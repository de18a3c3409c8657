// The texts of drags, made and taken apart.

#include "model/fnkfiles-dragtext.h"
#include "core/fnkutil.h"
#include "tabletest.h"

namespace {

class DragText : public TableTest {};

using Paths = std::vector<std::string>;

TEST_F(DragText, ItemsSurviveWhateverTheirNames)
{
    const Paths cases[] = {{"/a"}, {"/a b", "/c d/"}, {"/one", "/\xFF\n", "/three/"}};
    for (const Paths& paths : cases) {
        EXPECT_EQ(SplitDragText(MakeDragText(paths)), paths);
    }
    EXPECT_EQ(MakeDragText({"/home/user/notes.txt", "/home/user/src/"}),
              "file:/home/user/notes.txt file:/home/user/src/");
    const Paths made = {files.File("a b%\xFF.txt"), files.Directory("d") + "/", files.Path()};
    EXPECT_EQ(SplitUriList(MakeUriList(made)), made);
}

TEST_F(DragText, ListsOfOtherProgramsAreUnderstood)
{
    const std::string file = files.File("x y");
    const std::string directory = files.Directory("d");
    const std::string uri = "file://" + files.Path() + "x%20y";
    EXPECT_EQ(SplitUriList("# comment\r\n" + uri + "\r\nfile://" + directory + "\r\n"), (Paths{file, directory + "/"}));
    EXPECT_EQ(SplitUriList("file://localhost" + file.substr(0, file.size() - 3) + "x%20y"), Paths{file});
    EXPECT_EQ(SplitDragText(uri + "\r\n"), Paths{file}) << "given as text";
    EXPECT_EQ(SplitUriList(uri + "\n" + uri), (Paths{file, file}));
    EXPECT_EQ(SplitUriList(uri + "\r\n" + '\0'), Paths{file}) << "ended like a string";
    EXPECT_EQ(SplitDragText("file:/a file:/b/" + std::string(1, '\0')), (Paths{"/a", "/b/"}));
}

TEST_F(DragText, OneItemThatIsNoFileHereRefusesAll)
{
    const std::string uri = "file://" + files.File("x");
    for (const std::string& list : {std::string(), std::string("# only\r\n"), uri + "\r\nhttp://example.org/x\r\n",
                                    uri + "\r\nfile://elsewhere.example/x\r\n", uri + "\r\nnot a uri", uri + "%00"}) {
        EXPECT_EQ(SplitUriList(list), Paths()) << list;
    }
    for (const std::string& text :
         {std::string(), std::string("hello"), std::string("file:"), std::string("file:x"),
          std::string("file:/x file:relative"), std::string(" file:/x"), "file:/" + std::string(kMaxPathBytes, 'x'),
          std::string("file:file:file:"), std::string("file:/x\0y", 9)}) {
        EXPECT_EQ(SplitDragText(text), Paths()) << text.substr(0, 30);
    }
}

}  // namespace
