#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "FaultyHost.h"
#include "support/Dialogs.h"
#include "support/Settings.h"

// The error component itself fails, once or for good, wherever something has to be reported. What it does wrong goes to
// the trap above the one that was reporting, and at last to the host; what the user has written goes back all the same.

namespace {

// Where something is to be reported or told.
enum class Place { Constructor, Display, Load, Event, Alert };
constexpr Place AllPlaces[] = {Place::Constructor, Place::Display, Place::Load, Place::Event, Place::Alert};
constexpr const char* PlaceNames[] = {"Constructor", "Display", "load", "an event", "the clipboard"};

struct Result {
    long Number = 0;  // of the error that reached the host
    std::wstring Source;
    std::wstring Sql;
    std::wstring Left = L"<not shown>";
};

class ErrorComponentFaultsTest : public FaultyHostFixture {
protected:
    ErrorComponentFaultsTest() {
        Errors.Wrap = [this](const Object& made) { return Wanted.Wrap(L"Errors.", made); };
        Wanted.Inside = [this](Fault fault) {
            if (fault == Fault::Reenters) {
                Pump();
                std::wstring other = L"another text";
                editor_.Call(L"Display", ByRef(other));
                EXPECT_EQ(L"another text", other);
            } else if (fault == Fault::Closes) {
                EditorWindow::Close();
            } else if (EndsWindow(fault)) {
                editor_.Call(L"Destructor");
            }
        };
    }

    // By reference to the host's own string, which is written whatever comes of the call.
    static Result CallDisplay(const Object& editor, const std::wstring& sql) {
        BSTR text = SysAllocString(sql.c_str());
        VARIANTARG argument{};
        argument.vt = VT_BYREF | VT_BSTR;
        argument.pbstrVal = &text;
        DISPPARAMS parameters{&argument, nullptr, 1, 0};
        EXCEPINFO exception{};
        OLECHAR name[] = L"Display";
        LPOLESTR names = name;
        DISPID id = 0;
        EXPECT_EQ(S_OK, editor.Dispatch()->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id));
        const HRESULT called = editor.Dispatch()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                                         &parameters, nullptr, &exception, nullptr);
        Result result;
        if (FAILED(called)) {
            const RuntimeError error = ErrorFromHresult(called, &exception);
            result.Number = error.Number;
            result.Source = error.Source;
        }
        result.Sql = TextOf(text);
        SysFreeString(text);
        return result;
    }

    Result Run(Place place) {
        Settings::Clear();
        auto members = Database.Members;
        auto dictionary = Database.DictionaryMembers;
        if (place == Place::Constructor) Database.Members.erase(L"Connected");
        if (place == Place::Display) Database.Members.erase(L"DBTypeName");
        if (place == Place::Load) Settings::Put(L"MainLeft", L"no number");
        if (place == Place::Event) Database.DictionaryMembers.erase(L"Schemas");
        Result result;
        try {
            editor_.Call(L"Constructor", MakeHost());
            if (place != Place::Constructor) {
                std::wstring left = L"<not shown>";
                // What is not shown leaves what `left` holds already.
                const WhenShown shown(
                    [&] {
                        EditorWindow::SetText(L"-- edited");
                        left = Act(place);
                        if (!Gone() && !ending_) EditorWindow::Close();
                    },
                    WhenShown::Expect::MayStayHidden);
                result = CallDisplay(editor_, L"-- mine");
                result.Left = left;
            }
        } catch (const RuntimeError& error) {
            result.Number = error.Number;
            result.Source = error.Source;
        }
        Database.Members = members;
        Database.DictionaryMembers = dictionary;
        Settings::Clear();
        return result;
    }

    std::wstring Act(Place place) {
        if (place == Place::Event) {
            Tree.Open(Tree.At({}));
            return Gone() ? L"<gone>" : Tree.Children(Tree.At({}));
        }
        if (place == Place::Alert) {
            SendMessageW(EditorWindow::Editor(), EM_SETSEL, 0, -1);
            const LockedClipboard locked;
            EditorWindow::Choose(L"Edit", L"Copy");
        }
        return L"";
    }

    // Another thread holds the clipboard, as another program would.
    class LockedClipboard {
    public:
        LockedClipboard() {
            thread_ = CreateThread(nullptr, 0, Hold, this, 0, nullptr);
            WaitForSingleObject(held_, 5000);
        }
        ~LockedClipboard() {
            SetEvent(release_);
            WaitForSingleObject(thread_, 5000);
            CloseHandle(thread_);
            CloseHandle(held_);
            CloseHandle(release_);
        }
        LockedClipboard(const LockedClipboard&) = delete;
        LockedClipboard& operator=(const LockedClipboard&) = delete;

    private:
        static DWORD WINAPI Hold(void* parameter) {
            const auto& self = *static_cast<LockedClipboard*>(parameter);
            const HWND owner =
                CreateWindowExW(0, L"Static", L"", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr, nullptr, nullptr);
            const BOOL opened = OpenClipboard(owner);
            SetEvent(self.held_);
            WaitForSingleObject(self.release_, 10000);
            if (opened) CloseClipboard();
            DestroyWindow(owner);
            return 0;
        }
        HANDLE held_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        HANDLE release_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        HANDLE thread_ = nullptr;
    };

    Object editor_;
    bool ending_ = false;  // what the event lets out will end the window
};

// What is reported when the error component is well, and what the step leaves.
struct Well {
    std::vector<std::wstring> Reports;
    const wchar_t* Left;
};
Well WellOf(Place place) {
    switch (place) {
        case Place::Constructor:
            return {{L"clsSQLEditor.Constructor 438 brvSQLEditor"}, L"<not shown>"};
        case Place::Display:
            return {{L"frmSQLEditor.Display 438 brvSQLEditor"}, L"<not shown>"};
        case Place::Load:
            // Nothing is filled after what failed: the default schema has no root to be looked for below.
            return {{L"frmSQLEditor.Form_Load 13 brvSQLEditor", L"frmSQLEditor.Constructor 35601 brvSQLEditor"}, L""};
        case Place::Event:
            return {{L"clsDictionary.Get Schemas 438 brvSQLEditor"}, L"Current Schema"};
        default:
            return {{}, L""};
    }
}

struct Error {
    long Number;
    std::wstring Source;
};

std::vector<std::wstring> One(const wchar_t* place, const Error& error) {
    return {std::wstring(place) + L" " + std::to_wstring(error.Number) + L" " + error.Source};
}

}  // namespace

TEST_F(ErrorComponentFaultsTest, AnywhereOnceAndForGood) {
    struct Way {
        const wchar_t* Member;  // "" is the making of the component
        Fault How;
        bool ForGood;
    };
    std::vector<Way> ways{{L"", Fault::ObjectError, false}, {L"", Fault::ObjectError, true}};
    for (const wchar_t* member : {L"Errors.Constructor", L"Errors.ErrorMessage", L"Errors.Alert"}) {
        for (const Fault fault : AllFaults) {
            for (const bool forGood : {false, true}) {
                // An unknown name is unknown for good; what comes of a value, or of the window's end, comes once.
                if (fault == Fault::UnknownName ? !forGood : forGood && !ExceptionOf(fault)) continue;
                if (fault == Fault::EndsNoColumns || fault == Fault::EndsNoDictionary || fault == Fault::Forgets) {
                    continue;
                }
                const bool alike = IsSpecialNumber(fault) || (IsWrongValue(fault) && fault != Fault::Null) ||
                                   fault == Fault::MissingMember || (fault == Fault::OwnError && forGood);
                if (!alike || EveryCase()) ways.push_back({member, fault, forGood});
            }
        }
    }
    int cases = 0;
    size_t number = 0;
    for (const Place place : AllPlaces) {
        for (const Way& way : ways) {
            const std::wstring member = way.Member;
            // What is asked for in this place.
            if (member == (place == Place::Alert ? L"Errors.ErrorMessage" : L"Errors.Alert")) continue;
            // A clipboard that is locked is tried for a while: that takes time.
            if (place == Place::Alert && way.How != Fault::ObjectError && ExceptionOf(way.How) && !EveryCase())
                continue;
            const bool window = place == Place::Event || place == Place::Alert;
            // Before the window shows there is nothing to be closed, and in Constructor no Display that another one
            // would come into.
            if (way.How == Fault::Closes && !window) continue;
            if (way.How == Fault::Reenters && place == Place::Constructor) continue;
            if (!IsChosen(number++, 1, 5)) continue;
            ++cases;
            const std::string name = std::string(PlaceNames[static_cast<int>(place)]) + ": " +
                                     (member.empty() ? "cannot be made" : std::string(member.begin(), member.end())) +
                                     ", " + NameOf(way.How) + (way.ForGood ? ", for good" : ", once");
            SCOPED_TRACE(name);
            Dog.Begin(name);
            ASSERT_EQ(S_OK, Dll.CanUnload());
            editor_ = Dll.Create();
            Errors.Told.clear();

            // What the reporting itself fails with, if it does.
            std::optional<Error> failure;
            if (member.empty()) {
                failure = Error{ErrorNumber::CannotCreateObject, L"brvSQLEditor"};
            } else if (way.How == Fault::UnknownName || way.How == Fault::MissingMember) {
                failure = Error{ErrorNumber::NoSuchMember, L"brvSQLEditor"};
            } else if (const auto raised = ExceptionOf(way.How)) {
                failure = Error{raised->Number, raised->Source};
            }
            std::vector<std::wstring> reports;
            std::vector<std::wstring> boxes;
            std::wstring left = WellOf(place).Left;
            Error host{0, L""};
            const bool editedGoesBack = place != Place::Constructor && place != Place::Display;
            std::wstring sql = place == Place::Constructor ? L"" : editedGoesBack ? L"-- edited" : L"-- mine";
            const bool nothingMore = way.ForGood && member != L"Errors.Alert";
            ending_ = false;
            if (!failure) {
                // One that answers something else has not taken the report, and nobody asks what it answers.
                reports = WellOf(place).Reports;
                if (IsWrongValue(way.How) && member == L"Errors.ErrorMessage") reports.erase(reports.begin());
                if (way.How == Fault::Reenters) {
                    // What comes of calling Display from inside is reported first: it is over first. A Display that
                    // reports its own failure is over, and the next one fails like it.
                    reports.insert(reports.begin(), place == Place::Display ? L"frmSQLEditor.Display 438 brvSQLEditor"
                                                                            : L"frmSQLEditor.Display 400 brvSQLEditor");
                }
                if (EndsWindow(way.How) && window) left = place == Place::Event ? L"<gone>" : L"";
                if (EndsWindow(way.How) && place == Place::Load) {
                    // What loads is held until it has loaded; there is no window for Display then.
                    reports.emplace_back(L"clsSQLEditor.Display 91 brvSQLEditor");
                    left = L"<not shown>";
                    sql = L"-- mine";
                }
            } else if (place == Place::Constructor) {
                host = *failure;
            } else if (place == Place::Display) {
                if (nothingMore) host = *failure;
                if (!nothingMore) reports = One(L"clsSQLEditor.Display", *failure);
            } else if (place == Place::Load) {
                // The window is filled while its Constructor looks for the default schema; what was not filled is
                // shown all the same, unless nobody takes the report.
                if (nothingMore) {
                    left = L"<not shown>";
                    sql = L"-- mine";
                    host = *failure;
                } else {
                    reports = One(L"frmSQLEditor.Constructor", *failure);
                }
            } else if (place == Place::Event) {
                // The trap of the procedure above the getter; an error of the component's own kind goes on to the
                // event.
                left = L"(undefined)";
                const bool own = failure->Source == L"brvSQLEditor" && failure->Number < 0;
                if (nothingMore && !(own && way.How == Fault::OwnLimit)) {
                    host = *failure;
                    ending_ = true;
                } else if (own && way.How == Fault::OwnLimit) {
                    boxes = {
                        L"brvSQLEditor: Exceeded the maximum number of items in the database object list. Try "
                        L"collapsing/closing a few branches and try it again."};
                } else {
                    reports =
                        One(own ? L"frmSQLEditor.trvDBObjects_Expand" : L"modLists.PopulateDBObjSchemas", *failure);
                }
            } else if (nothingMore) {
                host = *failure;
                ending_ = true;
            } else {
                reports = One(L"frmSQLEditor.mnuEditCopy_Click", *failure);
            }

            Errors.CannotBeCreated = member.empty() && way.ForGood;
            Errors.CreateFailures = member.empty() && !way.ForGood ? 1 : 0;
            // Once: the second call finds it well.
            Wanted.Arm(member.empty() ? std::optional<Case>()
                                      : Case{member, way.ForGood && way.How != Fault::UnknownName ? 0 : 1, way.How});
            BoxAnswerer answered;
            const Result result = Run(place);
            Wanted.Disarm();
            Errors.CannotBeCreated = false;
            Errors.CreateFailures = 0;
            if (!member.empty()) {
                EXPECT_LE(1, Wanted.Injected()) << "the call was not made";
            }
            EXPECT_EQ(reports, Reported());
            EXPECT_EQ(boxes, answered.All);
            EXPECT_EQ(host.Number, result.Number);
            EXPECT_EQ(host.Source, result.Source);
            EXPECT_EQ(left, result.Left);
            EXPECT_EQ(sql, result.Sql);
            EXPECT_TRUE(Gone());

            // The next call works, and reports as it should.
            if (!EveryCase() && !(failure && IsFollowedUp(way.How) && way.ForGood)) {
                editor_ = Object();
                continue;
            }
            Errors.Told.clear();
            editor_.Call(L"Destructor");
            ending_ = false;
            const Result again = Run(place);
            EXPECT_EQ(0, again.Number);
            EXPECT_EQ(WellOf(place).Reports, Reported());
            EXPECT_EQ(place == Place::Alert ? 1U : 0U, Errors.Told.size());
            EXPECT_EQ(WellOf(place).Left, again.Left);
            editor_.Call(L"Destructor");
            editor_ = Object();
        }
    }
    std::printf("fault matrix, error component: %d cases\n", cases);
}
