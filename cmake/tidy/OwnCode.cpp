// A plug-in of clang-tidy 14 that keeps its checks to our own code.
//
// clang-tidy matches every check against every declaration of a translation unit and throws away
// what it finds in the headers of others. Those hold nearly all declarations: the checks would
// spend nine tenths of their time there. The check below finds nothing; it comes first upon the
// whole unit and narrows what the others walk through, as editors do that run them at each
// keystroke. Declarations of others are still there for whoever follows a name or a call to them.
#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchFinder.h>
#include <vector>

namespace {

using clang::ast_matchers::MatchFinder;

class OwnCodeCheck : public clang::tidy::ClangTidyCheck {
 public:
    using ClangTidyCheck::ClangTidyCheck;

    void registerMatchers(MatchFinder* finder) override {
        finder->addMatcher(clang::ast_matchers::translationUnitDecl().bind("unit"), this);
    }

    void check(const MatchFinder::MatchResult& result) override {
        const auto* unit = result.Nodes.getNodeAs<clang::TranslationUnitDecl>("unit");
        std::vector<clang::Decl*> own;
        for (clang::Decl* declaration : unit->decls()) {
            const clang::SourceLocation place = declaration->getLocation();
            if (place.isValid() && !result.SourceManager->isInSystemHeader(place)) {
                own.push_back(declaration);
            }
        }
        result.Context->setTraversalScope(own);
    }
};

class OwnCodeModule : public clang::tidy::ClangTidyModule {
 public:
    void addCheckFactories(clang::tidy::ClangTidyCheckFactories& factories) override {
        factories.registerCheck<OwnCodeCheck>("quoril-own-code");
    }
};

const clang::tidy::ClangTidyModuleRegistry::Add<OwnCodeModule> kRegistered(
    "quoril-module", "Keeps to our own code.");

}  // namespace
