#include <gtest/gtest.h>

#include "FakeDispatch.h"
#include "ScriptHost.h"
#include "automation/HostCollection.h"
#include "automation/DynamicObject.h"

// Objects that scripts make, as hosts of ours: a class of VBScript, an object of JScript.

namespace {

constexpr const wchar_t* BasicHost =
    LR"(
Class Host
    Public Field
    Private text_
    Private object_
    Public Reads
    Public Property Get Text
        Reads = Reads + 1
        Text = text_
    End Property
    Public Property Let Text(value)
        text_ = value
    End Property
    Public Property Get Kept
        Set Kept = object_
    End Property
    Public Property Set Kept(value)
        Set object_ = value
    End Property
    Public Default Property Get Value
        Value = "the default"
    End Property
    Public Property Get Twice(number)
        Twice = 2 * number
    End Property
    Public Function Join(first, second)
        Join = first & "-" & second
    End Function
    Public Function ByValue(ByVal text)
        text = text & " changed"
        ByValue = text
    End Function
    Public Sub Change(ByRef text)
        text = text & " changed"
    End Sub
    Public Sub Count(ByRef number)
        number = number + 1
    End Sub
    Public Sub Negate(flag)
        flag = Not flag
    End Sub
    Public Sub Give(object)
        Set object = Me
    End Sub
    Public Sub Fails()
        Reads = Reads + 1
        Err.Raise vbObjectError + 1, "brvADO", "no such object"
    End Sub
    Public Sub Mismatch()
        Dim number
        number = CInt("x")
    End Sub
    Public Property Get Code
        Code = 17
    End Property
    Public Property Get Flag
        Flag = True
    End Property
    Public Property Get NullValue
        NullValue = Null
    End Property
    Public Property Get NoValue
    End Property
    Public Property Get NoObject
        Set NoObject = Nothing
    End Property
    Public Property Get List
        List = Array("a", "b")
    End Property
End Class
Class Bag
    Public Count
    Public Function Item(position)
        Item = "item" & position
    End Function
End Class
Dim theHost, theBag
Set theHost = New Host
theHost.Text = "text"
theHost.Field = "field"
theHost.Reads = 0
Set theBag = New Bag
theBag.Count = 2
)";

constexpr const wchar_t* ScriptObject =
    LR"(
var reads = 0;
var other = { name: "other" };
var host = {
    text: "text", number: 17, half: 0.5, flag: true, nothing: null, child: other, list: [1, 2],
    join: function (first, second) { return first + "-" + second; },
    change: function (text) { text = text + " changed"; return text; },
    fails: function () { reads = reads + 1; throw new Error(-2147221503, "no such object"); },
    callsNoFunction: function () { reads = reads + 1; var value = 5; value(); },
    count: function () { reads = reads + 1; return arguments.length; },
    reads: function () { return reads; },
    toString: function () { return "as text"; }
};
var bag = { Count: 2, Item: function (position) { return "item" + position; } };
)";

bool UnderWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

Object Basic(ScriptHost& script, const wchar_t* name = L"theHost") {
    script.Run(BasicHost);
    return script.Evaluate(name).ToObject();
}

Object JScript(ScriptHost& script, const wchar_t* name = L"host") {
    script.Run(ScriptObject);
    return script.Evaluate(name).ToObject();
}

}  // namespace

TEST(VBScriptTest, MembersAreRead) {
    ScriptHost script(L"VBScript");
    const Object host = Basic(script);
    EXPECT_EQ(L"text", host.Get(L"Text").ToText());
    EXPECT_EQ(L"field", host.Get(L"Field").ToText());
    EXPECT_EQ(L"field", host.Get(L"FIELD").ToText()) << "names are compared without regard to case";
    EXPECT_EQ(17, host.Get(L"Code").ToLong());
    EXPECT_TRUE(host.Get(L"Flag").ToBoolean());
    EXPECT_TRUE(host.Get(L"NullValue").IsNull());
    EXPECT_TRUE(host.Get(L"NoValue").IsEmpty());
    EXPECT_TRUE(host.Get(L"NoObject").IsNothing());
    EXPECT_EQ(L"a|b|", Joined(HostCollection::OrArray(host.Get(L"List"))));
    EXPECT_EQ(1, host.Get(L"Reads").ToLong()) << "a getter runs once a reading";
}

TEST(VBScriptTest, MembersAreCalledWithArgumentsInOrder) {
    ScriptHost script(L"VBScript");
    const Object host = Basic(script);
    EXPECT_EQ(L"one-2", host.Call(L"Join", L"one", 2).ToText());
    EXPECT_EQ(L"one-2", host.Get(L"Join", L"one", 2).ToText());
    EXPECT_EQ(8, host.Get(L"Twice", 4).ToLong());
    EXPECT_TRUE(host.Has(L"Join"));
    EXPECT_FALSE(host.Has(L"NotThere"));
    EXPECT_EQ(438, NumberOf([&host] { host.Get(L"NotThere"); }));
}

TEST(VBScriptTest, AClassReadsAsItsDefaultMember) {
    ScriptHost script(L"VBScript");
    const Object host = Basic(script);
    EXPECT_EQ(L"the default", host.Value().ToText());
    EXPECT_EQ(L"the default", Variant(host).ToText());
}

TEST(VBScriptTest, PropertiesAreWritten) {
    ScriptHost script(L"VBScript");
    const Object host = Basic(script);
    host.Let(L"Text", Variant(L"new"));
    host.Let(L"Field", Variant(5));
    EXPECT_EQ(L"new", host.Get(L"Text").ToText());
    EXPECT_EQ(5, host.Get(L"Field").ToLong());
    FakeDispatch other;
    host.Let(L"Kept", Variant(&other));
    EXPECT_EQ(&other, host.Get(L"Kept").ToObject().Dispatch());
    host.Let(L"Kept", Variant::Nothing());
    EXPECT_TRUE(host.Get(L"Kept").IsNothing());
}

TEST(VBScriptTest, AnArgumentByReferenceComesBackChanged) {
    ScriptHost script(L"VBScript");
    const Object host = Basic(script);
    std::wstring text = L"text";
    host.Call(L"Change", ByRef(text));
    EXPECT_EQ(L"text changed", text);
    long number = 1;
    EXPECT_EQ(13, NumberOf([&] { host.Call(L"Change", ByRef(number)); })) << "a text that is no number comes back";
    EXPECT_EQ(1, number);
    host.Call(L"Count", ByRef(number));
    EXPECT_EQ(2, number);
    bool flag = true;
    host.Call(L"Negate", ByRef(flag));
    EXPECT_FALSE(flag);
    Object object;
    host.Call(L"Give", ByRef(object));
    EXPECT_TRUE(object.IsSameAs(host));
    Variant variant(L"variant");
    host.Call(L"Change", ByRef(variant));
    EXPECT_EQ(L"variant changed", variant.ToText());
    std::wstring kept = L"kept";
    host.Call(L"Change", kept);
    EXPECT_EQ(L"kept", kept);
    EXPECT_EQ(L"kept changed", host.Call(L"ByValue", ByRef(kept)).ToText());
    EXPECT_EQ(L"kept", kept);
}

TEST(VBScriptTest, ErrorsOfAScriptArriveWhole) {
    ScriptHost script(L"VBScript");
    const Object host = Basic(script);
    const RuntimeError error = ErrorOf([&host] { host.Call(L"Fails"); });
    EXPECT_EQ(1, host.Get(L"Reads").ToLong()) << "not called a second time";
    EXPECT_NE(0, NumberOf([&host] { host.Call(L"Join", 1); })) << "an argument too few";
    if (UnderWine()) {
        // The engine tells the host of the script what happened, and its caller only that something did.
        EXPECT_EQ(static_cast<long>(0x80020101), error.Number);
        EXPECT_EQ(static_cast<long>(0x80020101), NumberOf([&host] { host.Call(L"Mismatch"); }));
    } else {
        EXPECT_EQ(-2147221503, error.Number);
        EXPECT_EQ(L"brvADO", error.Source);
        EXPECT_EQ(L"no such object", error.Description);
        EXPECT_EQ(13, NumberOf([&host] { host.Call(L"Mismatch"); }));
    }
}

TEST(VBScriptTest, AClassWithCountAndItemIsACollection) {
    ScriptHost script(L"VBScript");
    EXPECT_EQ(L"item1|item2|", Joined(HostCollection(Variant(Basic(script, L"theBag")))));
}

TEST(VBScriptTest, ADictionaryOfAScriptIsACollection) {
    ScriptHost script(L"VBScript");
    script.Run(L"Dim list: Set list = CreateObject(\"Scripting.Dictionary\"): list.Add \"a\", 1: list.Add \"b\", 2");
    EXPECT_EQ(L"a|b|", Joined(HostCollection(script.Evaluate(L"list"))));
    EXPECT_EQ(L"1|2|", Joined(HostCollection::OrArray(script.Evaluate(L"list.Items"))));
}

TEST(VBScriptTest, AScriptUsesAnObjectOfOurs) {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    std::wstring seen;
    made->Define(L"Show", [&seen](const Arguments& arguments) {
        seen = arguments[0].ToText();
        EXPECT_TRUE(arguments.Let(0, Variant(L"changed"))) << "a script passes its variables by reference";
        return Variant(5);
    });
    made->Define(L"Fails", [](const Arguments&) -> Variant { RaiseError(-2147221503, L"ours", L"gone"); });
    made->DefineDefault([](const Arguments&) { return Variant(L"default"); });
    std::wstring text;
    made->Define(L"Text", [&text](const Arguments&) { return Variant(text); });
    made->DefineLet(L"Text", [&text](const Variant& value) { text = value.ToText(); });
    ScriptHost script(L"VBScript");
    script.AddObject(L"ours", held);
    script.Run(
        L"Dim value, result, number, source, description, standing\n"
        L"value = \"before\"\nresult = ours.Show(value)\nstanding = ours & \"\"\nours.text = \"written\"\n"
        L"On Error Resume Next\nours.Fails\nnumber = Err.Number: source = Err.Source: description = Err.Description\n");
    EXPECT_EQ(L"before", seen);
    EXPECT_EQ(L"changed", script.Evaluate(L"value").ToText());
    EXPECT_EQ(5, script.Evaluate(L"result").ToLong());
    EXPECT_EQ(L"default", script.Evaluate(L"standing").ToText());
    EXPECT_EQ(L"written", text);
    EXPECT_EQ(-2147221503, script.Evaluate(L"number").ToLong());
    EXPECT_EQ(L"ours", script.Evaluate(L"source").ToText());
    EXPECT_EQ(L"gone", script.Evaluate(L"description").ToText());
}

TEST(VBScriptTest, AScriptReadsACollectionOfOurs) {
    ScriptHost script(L"VBScript");
    script.AddObject(L"ours", MakeCollection({Variant(L"a"), Variant(L"b")}));
    script.Run(
        L"Dim all, one, counted, item\nFor Each item In ours: all = all & item & \"|\": Next\n"
        L"Dim held: Set held = ours: one = held(2): counted = ours.Count\n");
    EXPECT_EQ(L"a|b|", script.Evaluate(L"all").ToText());
    EXPECT_EQ(L"b", script.Evaluate(L"one").ToText());
    EXPECT_EQ(2, script.Evaluate(L"counted").ToLong());
}

TEST(JScriptTest, DataPropertiesAreRead) {
    ScriptHost script(L"JScript");
    const Object host = JScript(script);
    EXPECT_EQ(L"text", host.Get(L"text").ToText());
    EXPECT_EQ(17, host.Get(L"number").ToLong());
    EXPECT_DOUBLE_EQ(0.5, host.Get(L"half").ToDouble());
    EXPECT_TRUE(host.Get(L"flag").ToBoolean());
    EXPECT_TRUE(host.Get(L"nothing").IsNull());
    EXPECT_EQ(L"other", host.Get(L"child").ToObject().Get(L"name").ToText());
    EXPECT_EQ(438, NumberOf([&host] { host.Get(L"notThere"); }));
}

TEST(JScriptTest, FunctionsAreCalledOnce) {
    ScriptHost script(L"JScript");
    const Object host = JScript(script);
    EXPECT_EQ(L"one-2", host.Call(L"join", L"one", 2).ToText());
    EXPECT_EQ(L"one-2", host.Get(L"join", L"one", 2).ToText());
    EXPECT_EQ(0, host.Get(L"count").ToLong());
    EXPECT_EQ(2, host.Get(L"count", 1, 2).ToLong());
    EXPECT_EQ(2, host.Get(L"reads").ToLong());
}

TEST(JScriptTest, FailuresOfAFunctionStayFailures) {
    ScriptHost script(L"JScript");
    const Object host = JScript(script);
    EXPECT_NE(0, NumberOf([&host] { host.Get(L"fails"); }));
    EXPECT_EQ(1, host.Get(L"reads").ToLong());
    EXPECT_NE(0, NumberOf([&host] { host.Get(L"callsNoFunction"); }))
        << "the function is not a value to be read instead";
    EXPECT_EQ(2, host.Get(L"reads").ToLong()) << "not called a second time";
}

TEST(JScriptTest, AnArgumentByReferenceArrives) {
    ScriptHost script(L"JScript");
    const Object host = JScript(script);
    std::wstring text = L"text";
    EXPECT_EQ(L"text changed", host.Call(L"change", ByRef(text)).ToText());
    EXPECT_EQ(L"text", text) << "the language has no way to write to it";
    Variant variant(L"text");
    EXPECT_EQ(L"text changed", host.Call(L"change", ByRef(variant)).ToText());
}

TEST(JScriptTest, AnObjectReadsAsItsText) {
    ScriptHost script(L"JScript");
    EXPECT_EQ(L"as text", Variant(JScript(script)).ToText());
}

TEST(JScriptTest, PropertiesAreWritten) {
    ScriptHost script(L"JScript");
    const Object host = JScript(script);
    host.Let(L"text", Variant(L"new"));
    EXPECT_EQ(L"new", host.Get(L"text").ToText());
    host.Let(L"child", Variant(host));
    EXPECT_TRUE(host.Get(L"child").ToObject().IsSameAs(host));
}

TEST(JScriptTest, AnObjectWithCountAndItemIsACollection) {
    ScriptHost script(L"JScript");
    EXPECT_EQ(L"item1|item2|", Joined(HostCollection(Variant(JScript(script, L"bag")))));
}

TEST(JScriptTest, AScriptUsesAnObjectOfOurs) {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    made->Define(L"Join", [](const Arguments& arguments) {
        return Variant(arguments[0].ToText() + L"-" + arguments[1].ToText());
    });
    made->Define(L"Fails", [](const Arguments&) -> Variant { RaiseError(-2147221503, L"ours", L"gone"); });
    ScriptHost script(L"JScript");
    script.AddObject(L"ours", held);
    script.Run(
        L"var result = ours.Join('a', 2), number = 0, description = '';"
        L"try { ours.Fails(); } catch (e) { number = e.number; description = e.description; }");
    EXPECT_EQ(L"a-2", script.Evaluate(L"result").ToText());
    EXPECT_EQ(-2147221503, script.Evaluate(L"number").ToLong());
    EXPECT_EQ(L"gone", script.Evaluate(L"description").ToText());
}
