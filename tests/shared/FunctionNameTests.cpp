#include "shared/FunctionName.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace Named::Inner
{
struct Subject
{
    static const char* Static() { return ORVIK_FUNCTION; }
    virtual const char* Virtual(int) const { return ORVIK_FUNCTION; }
    const char*& Reference()
    {
        static const char* name = ORVIK_FUNCTION;
        return name;
    }
    std::string Text() { return ORVIK_FUNCTION; }
    const char* operator*() { return ORVIK_FUNCTION; }
    Subject() : m_pName(ORVIK_FUNCTION) {}
    virtual ~Subject() { g_last = ORVIK_FUNCTION; }

    template <class T>
    const char* Generic(T)
    {
        return ORVIK_FUNCTION;
    }

    const char* m_pName;
    static inline const char* g_last;
};

template <class A, class B>
struct Pair
{
    static const char* Name() { return ORVIK_FUNCTION; }
};

namespace
{
const char* Hidden()
{
    return ORVIK_FUNCTION;
}

struct HiddenSubject
{
    static const char* Name() { return ORVIK_FUNCTION; }
};
} // namespace
} // namespace Named::Inner

static long __attribute__((ms_abi)) FreeFunction(const char** name)
{
    *name = ORVIK_FUNCTION;
    return 0;
}

namespace
{
using Named::Inner::Subject;

TEST(FunctionName, Members_AreQualified)
{
    Subject subject;
    EXPECT_STREQ(Subject::Static(), "Named::Inner::Subject::Static");
    EXPECT_STREQ(subject.Virtual(1), "Named::Inner::Subject::Virtual");
    EXPECT_STREQ(subject.Reference(), "Named::Inner::Subject::Reference");
    EXPECT_EQ(subject.Text(), "Named::Inner::Subject::Text");
}

TEST(FunctionName, ConstructorAndDestructor_AreQualified)
{
    EXPECT_STREQ(Subject().m_pName, "Named::Inner::Subject::Subject");
    EXPECT_STREQ(Subject::g_last, "Named::Inner::Subject::~Subject");
}

TEST(FunctionName, Template_KeepsItsName)
{
    EXPECT_STREQ(Subject().Generic(1.5), "Named::Inner::Subject::Generic");
    EXPECT_TRUE(std::string_view(Named::Inner::Pair<int, long>::Name()).starts_with("Named::Inner::Pair<"));
    EXPECT_TRUE(std::string_view(Named::Inner::Pair<int, long>::Name()).ends_with(">::Name"));
}

TEST(FunctionName, UnnamedNamespace_IsLeftOut)
{
    EXPECT_STREQ(Named::Inner::Hidden(), "Named::Inner::Hidden");
    EXPECT_STREQ(Named::Inner::HiddenSubject::Name(), "Named::Inner::HiddenSubject::Name");
}

TEST(FunctionName, FreeFunction_KeepsItsBareName)
{
    const char* name = nullptr;
    FreeFunction(&name);
    EXPECT_STREQ(name, "FreeFunction");
}

TEST(FunctionName, EqualFunction_GivesTheSameText)
{
    EXPECT_EQ(Subject::Static(), Subject::Static());
}

template <std::size_t Size>
consteval bool IsCut(const char (&signature)[Size], std::string_view name)
{
    return std::string_view(
               Orvik::Shared::CutToQualifiedName(Orvik::Shared::FunctionSignature<Size>(signature)).m_text) == name;
}

// Spellings of both compilers, whichever one compiles this.
static_assert(IsCut("virtual HRESULT N::C::F(int) const", "N::C::F"));
static_assert(IsCut("const char *N::C::F()", "N::C::F"));
static_assert(IsCut("std::pair<int, void (*)(int)> N::C::F(int)", "N::C::F"));
static_assert(IsCut("void N::{anonymous}::F()", "N::F"));
static_assert(IsCut("void N::(anonymous namespace)::C::F(int)", "N::C::F"));
static_assert(IsCut("N::C<int, std::pair<long, char> >::C()", "N::C<int, std::pair<long, char> >::C"));
static_assert(IsCut("T N::C::F(T) [with T = int]", "N::C::F"));
static_assert(IsCut("int main()", "main"));
static_assert(IsCut("F", "F"));
static_assert(IsCut("", ""));
} // namespace
