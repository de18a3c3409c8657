// The texts that are addressed by number, in every language, and where the catalogues are found.

#include "core/fnkstring.h"
#include "language.h"

namespace {

class Catalogues : public TableTest {
protected:
    Catalogues() { SetLocale(kUtf8Locale); }
};

TEST_F(Catalogues, EveryTitleTellsItsColumn)
{
    for (const char* const language : kLanguages) {
        const ScopedLanguage spoken(language);
        for (int id = 0; id < kColumnKinds; ++id) {
            EXPECT_EQ(GetListStringColumn(GetListColumnString(id).c_str()), id) << language;
        }
        EXPECT_EQ(GetListStringColumn(""), kColumnKinds);
    }
    const ScopedLanguage german("de");
    EXPECT_EQ(GetListStringColumn("Größe"), COLUMN_SIZE);
    EXPECT_EQ(GetListStringColumn("Size"), kColumnKinds);
}

TEST_F(Catalogues, EveryTextIsTranslatedAndNoneIsTooLong)
{
    using Texts = std::vector<std::string>;
    const auto fetch = [](const char* language) {
        const ScopedLanguage spoken(language);
        Texts texts;
        for (int i = 0; i < kMenuEntryCount; ++i) {
            texts.push_back(GetMenuTipsString(i));
        }
        for (int i = 0; i < kToolSlotCount; ++i) {
            texts.push_back(GetToolTipsString(i));
        }
        return texts;
    };
    const Texts english = fetch("en");
    for (const char* const language : {FENNICK_LANGUAGES}) {
        const Texts translated = fetch(language);
        for (std::size_t i = 0; i < english.size(); ++i) {
            EXPECT_EQ(translated[i].empty(), english[i].empty()) << language << ": " << english[i];
            EXPECT_TRUE(english[i].empty() || translated[i] != english[i]) << language << ": " << english[i];
        }
    }
}

TEST_F(Catalogues, AreFoundBesideTheProgramUnlessTheyAreInstalled)
{
    const std::string installed = FindCatalogues("");
    EXPECT_TRUE(installed.ends_with("/share/locale")) << installed;
    const std::string program = files.Directory("bin") + "/";
    // Directories of other languages, or for them, are no reason to look there.
    files.File("bin/locale/eo/LC_MESSAGES/other.mo");
    EXPECT_EQ(FindCatalogues(program), installed);
    if (FindCatalogues(FENNICK_CATALOGUES "/../") == installed) {
        GTEST_SKIP() << "there are catalogues in " << installed;
    }
    files.File("bin/locale/eo/LC_MESSAGES/fennick.mo");
    EXPECT_EQ(FindCatalogues(program), files.At("bin/locale"));
    files.File("share/locale/eo/LC_MESSAGES/fennick.mo");
    EXPECT_EQ(FindCatalogues(program), files.At("share/locale"));
}

}  // namespace
