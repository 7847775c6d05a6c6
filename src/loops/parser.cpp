#include "loops/parser.h"

#include "loops/expression_parser.h"
#include "loops/token_reader.h"

namespace torvane::loops {

const Modifier* Find(const std::vector<Modifier>& modifiers, const std::string& name) {
  for (const Modifier& modifier : modifiers) {
    if (modifier.Name == name) return &modifier;
  }
  return nullptr;
}

namespace {

class Parser {
 public:
  Parser(std::string_view text, ProblemList& problems)
      : reader_(Tokens(text, problems), problems) {}

  ModelText Read() {
    try {
      ReadHead();
    } catch (const GivenUp&) {
      // Without a head nothing behind it makes sense.
      return std::move(model_);
    }
    while (!reader_.AtEnd() && !AtModelsEnd()) ReadElement();
    try {
      ReadEnd();
    } catch (const GivenUp&) {
    }
    return std::move(model_);
  }

 private:
  void ReadHead() {
    if (reader_.TakeWord("within")) {
      if (!reader_.SeesSymbol(";")) expressions_.DottedName("the name of a package");
      reader_.NeedSemicolon("behind \"within\"");
    }
    reader_.NeedWord("model", "with which a loop begins");
    const Token& name = reader_.NeedName("the model's name");
    model_.Name = name.Text;
    model_.Where = name.Where;
    model_.Description = reader_.TakeString().value_or("");
  }

  void ReadEnd() {
    if (reader_.AtEnd()) {
      reader_.Refuse(reader_.Last().After, "\"end " + model_.Name + ";\" is missing");
    }
    reader_.NeedWord("end", "of the model");
    const Token& name = reader_.NeedName("the model's name behind \"end\"");
    if (name.Text != model_.Name) {
      reader_.Refuse(name.Where,
                     "the model's name is " + model_.Name + ", and so it must stand here");
    }
    reader_.NeedSemicolon("behind the end of the model");
    if (!reader_.AtEnd()) {
      reader_.Refuse(reader_.Here().Where, "a file holds one model; this stands behind its end");
    }
  }

  // A declaration, an equation or the head of a section.
  void ReadElement() {
    try {
      if (reader_.TakeWord("equation")) {
        inEquations_ = true;
      } else if (reader_.SeesWord("protected") || reader_.SeesWord("public")) {
        protected_ = reader_.Take().Text == "protected";
        inEquations_ = false;
      } else if (reader_.SeesWord("annotation")) {
        ReadModelAnnotation();
      } else if (inEquations_) {
        model_.Equations.push_back(ReadEquation());
      } else if (reader_.TakeWord("type")) {
        ReadEnumeration();
      } else {
        ReadDeclaration();
      }
    } catch (const GivenUp&) {
      Recover();
    }
  }

  // A word that no section begins with would be met again for ever.
  void Recover() {
    const Place before = reader_.Here().Where;
    reader_.SkipToNext();
    const bool stuck = reader_.SeesWord("else") || reader_.SeesWord("elseif") ||
                       (reader_.SeesWord("annotation") && reader_.Here().Where == before);
    if (stuck) reader_.Take();
    recovered_ = true;
  }

  // Past the end of something whose head could not be read.
  bool AtModelsEnd() {
    while (reader_.SeesWord("end")) {
      if (!recovered_ || reader_.Next() == model_.Name || reader_.Next().empty()) return true;
      reader_.Take();
      reader_.Take();
      reader_.TakeSymbol(";");
    }
    return reader_.AtEnd();
  }

  void ReadModelAnnotation() {
    reader_.Take();
    std::vector<Modifier> read = expressions_.Modifiers();
    for (Modifier& modifier : read) model_.Annotation.push_back(std::move(modifier));
    reader_.NeedSemicolon("behind the annotation");
  }

  void ReadEnumeration() {
    Enumeration made;
    const Token& name = reader_.NeedName("the type's name");
    made.Name = name.Text;
    made.Where = name.Where;
    reader_.NeedSymbol("=", "behind the type's name");
    if (!reader_.SeesWord("enumeration")) {
      reader_.Refuse("\"enumeration(...)\"; there are no other types of one's own");
    }
    reader_.Take();
    reader_.NeedSymbol("(", "behind \"enumeration\"");
    do {
      made.Literals.push_back(reader_.NeedName("a choice").Text);
      reader_.TakeString();
    } while (reader_.TakeSymbol(","));
    reader_.NeedSymbol(")", "or \",\" behind the choice");
    reader_.TakeString();
    reader_.NeedSemicolon("behind the type");
    model_.Enumerations.push_back(std::move(made));
  }

  void ReadDeclaration() {
    Component head;
    head.Protected = protected_;
    head.Final = reader_.TakeWord("final");
    if (reader_.TakeWord("parameter")) head.How = Component::Prefix::Parameter;
    if (reader_.TakeWord("constant")) head.How = Component::Prefix::Constant;
    if (reader_.TakeWord("discrete")) head.How = Component::Prefix::Discrete;
    const Expression type = expressions_.DottedName("a declaration or \"equation\"");
    head.Type = type.Text;
    head.TypeWhere = type.Where;
    if (reader_.SeesSymbol("[")) {
      reader_.Refuse(reader_.Here().Where, "there are no arrays of signals; give each a name");
    }
    if (reader_.SeesSymbol("=")) {
      reader_.Refuse(type.Where, "equations stand behind the word \"equation\"");
    }
    do {
      Component one = head;
      ReadOne(one);
      model_.Components.push_back(std::move(one));
    } while (reader_.TakeSymbol(","));
    reader_.NeedSemicolon("behind the declaration");
  }

  void ReadOne(Component& one) {
    const Token& name = reader_.NeedName("a name behind the type");
    one.Name = name.Text;
    one.Where = name.Where;
    if (reader_.SeesSymbol("[")) {
      reader_.Refuse(reader_.Here().Where, "there are no arrays of signals; give each a name");
    }
    one.Modifiers = expressions_.Modifiers();
    if (reader_.SeesSymbol(":=")) reader_.Refuse("\"=\"");
    if (reader_.TakeSymbol("=")) one.Value = expressions_.Read();
    one.Description = reader_.TakeString().value_or("");
    if (reader_.TakeWord("annotation")) one.Annotation = expressions_.Modifiers();
  }

  Equation ReadEquation() {
    if (reader_.SeesWord("if")) return ReadIf();
    if (reader_.SeesWord("when")) return ReadWhen();
    Equation equation;
    equation.Where = reader_.Here().Where;
    if (reader_.TakeWord("reinit")) {
      equation.What = Equation::Kind::Reinit;
      reader_.NeedSymbol("(", "behind \"reinit\"");
      equation.Sides = expressions_.Arguments(")");
    } else {
      equation.Sides.push_back(expressions_.Read());
      if (reader_.SeesSymbol(":=")) {
        reader_.Refuse(reader_.Here().Where, "equations are written with \"=\"");
      }
      reader_.NeedSymbol("=", "in the equation");
      equation.Sides.push_back(expressions_.Read());
    }
    reader_.TakeString();
    reader_.NeedSemicolon("behind the equation");
    return equation;
  }

  Equation ReadIf() {
    Equation equation;
    equation.What = Equation::Kind::If;
    equation.Where = reader_.Take().Where;
    equation.Branches.push_back(ReadBranch());
    while (true) {
      if (reader_.TakeWord("elseif")) {
        equation.Branches.push_back(ReadBranch());
      } else if (reader_.TakeWord("else")) {
        equation.Branches.push_back({{}, ReadBranchEquations()});
        break;
      } else {
        break;
      }
    }
    ReadEndOf("if");
    return equation;
  }

  Equation ReadWhen() {
    Equation equation;
    equation.What = Equation::Kind::When;
    equation.Where = reader_.Take().Where;
    equation.Branches.push_back(ReadBranch());
    ReadEndOf("when");
    return equation;
  }

  Branch ReadBranch() {
    Branch branch;
    branch.Condition = expressions_.Read();
    reader_.NeedWord("then", "behind the condition");
    branch.Equations = ReadBranchEquations();
    return branch;
  }

  // What is wrong with one of them does not hide the others.
  std::vector<Equation> ReadBranchEquations() {
    if (depth_ == MaxBranches) {
      reader_.Refuse(reader_.Here().Where, "if and when are nested too deep");
    }
    ++depth_;
    std::vector<Equation> equations;
    while (!reader_.AtEnd() && !reader_.SeesWord("end") && !reader_.SeesWord("else") &&
           !reader_.SeesWord("elseif") && !reader_.SeesWord("equation") &&
           !reader_.SeesWord("protected") && !reader_.SeesWord("public")) {
      const Place before = reader_.Here().Where;
      try {
        equations.push_back(ReadEquation());
      } catch (const GivenUp&) {
        reader_.SkipToNext();
        if (reader_.Here().Where == before) reader_.Take();
      }
    }
    --depth_;
    return equations;
  }

  void ReadEndOf(const char* what) {
    reader_.NeedWord("end", std::string("of this ") + what);
    reader_.NeedWord(what, std::string("behind \"end\"; an ") + what + " ends here");
    reader_.NeedSemicolon(std::string("behind \"end ") + what + "\"");
  }

  static constexpr int MaxBranches = 20;

  TokenReader reader_;
  ExpressionParser expressions_{reader_};
  ModelText model_;
  bool inEquations_ = false;
  bool protected_ = false;
  bool recovered_ = false;  ///< something could not be read
  int depth_ = 0;
};

}  // namespace

ModelText Parse(std::string_view text, ProblemList& problems) {
  return Parser(text, problems).Read();
}

}  // namespace torvane::loops
