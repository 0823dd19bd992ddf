// How engines, helpers and screens put a box before the user. The front end answers.
#pragma once

#include <string>

namespace owb {

enum class BoxIcon { None, Critical, Question, Warning, Information };
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class BoxAnswer { Ok, Cancel, Yes, No };

struct Box {
    std::string text;
    std::string title = "Orvane Wagebook";
    BoxIcon icon = BoxIcon::None;
    BoxButtons buttons = BoxButtons::Ok;
    BoxAnswer defaultAnswer = BoxAnswer::Ok;  // what Enter gives
    int closesAfterSeconds = 0;               // goes away by itself; 0 stays until answered
};

class MessageBoxes {
  public:
    virtual ~MessageBoxes() = default;
    virtual BoxAnswer show(const Box& box) = 0;

    void critical(const std::string& text, const std::string& title = "Orvane Wagebook") {
        show({text, title, BoxIcon::Critical});
    }
    void warning(const std::string& text, const std::string& title = "Orvane Wagebook") {
        show({text, title, BoxIcon::Warning});
    }
    void information(const std::string& text, const std::string& title = "Orvane Wagebook") {
        show({text, title, BoxIcon::Information});
    }
};

}  // namespace owb
