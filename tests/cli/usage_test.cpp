#include <gtest/gtest.h>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

struct WrongUsage {
  const char* Line;
  const char* Message;  ///< part of it
};

const std::string RunAfter = " --until 0.01 --every 0.01";

// One line that says what is wrong and, for a name, what it may have been meant to be; nothing on
// standard output; exit code 2.
void ExpectRefused(const std::string& line, const std::string& message) {
  const Outcome outcome = RunCliLine(line);
  EXPECT_EQ(outcome.Code, 2) << line;
  EXPECT_EQ(outcome.Out, "") << line;
  EXPECT_EQ(Lines(outcome.Err).size(), 1U) << line << "\n" << outcome.Err;
  EXPECT_TRUE(outcome.Err.starts_with("Error: ")) << line << "\n" << outcome.Err;
  EXPECT_NE(outcome.Err.find(message), std::string::npos) << line << "\n" << outcome.Err;
}

TEST(WrongUsage, OfCommandsAndOptions) {
  const WrongUsage cases[] = {
      {"", "a command is needed"},
      {"rnu 1", "unknown command \"rnu\"; did you mean \"run\"?"},
      {"--verison", "unknown option \"--verison\"; did you mean \"--version\"?"},
      {"run", "MODEL"},
      {"run 1 --every 1", "--until"},
      {"run 1 --untill 1 --every 1", "unknown option \"--untill\"; did you mean \"--until\"?"},
      {"run 1 2 --until 1 --every 1", "unexpected argument \"2\""},
      {"run 1 --until 1 --every", "--every"},
      {"run 1 --until 1 --until 2 --every 1", "--until"},
      {"models extra", "unexpected argument \"extra\""},
  };
  for (const WrongUsage& wrong : cases) ExpectRefused(wrong.Line, wrong.Message);
}

TEST(WrongUsage, OfModels) {
  for (const char* command : {"constants ", "signals "}) {
    ExpectRefused(std::string(command) + "'2-1 PI Controller'",
                  "unknown model \"2-1 PI Controller\"; did you mean \"2-1 PI+ Controller\"?");
  }
  const WrongUsage cases[] = {
      {"2-1", "did you mean \"2-1 PI+ Controller\"?"},
      {"15", "no model has the index 15; they go from 0 to 14"},
      {"-1", "no model has the index -1"},
      {"1.0", "unknown model \"1.0\""},
      {"''", "unknown model \"\""},
  };
  for (const WrongUsage& wrong : cases) {
    ExpectRefused("run " + std::string(wrong.Line) + RunAfter, wrong.Message);
  }
}

TEST(WrongUsage, OfNumbers) {
  for (const char* number : {"0", "-1", "abc", "1s", "''", "nan", "inf", "1e999", "0x10", "1,5"}) {
    ExpectRefused(std::string("run 1 --every 1 --until ") + number, "--until ");
    ExpectRefused(std::string("run 1 --until 1 --every ") + number, "--every ");
    ExpectRefused(std::string("speed 1 --for ") + number, "--for ");
  }
  for (const char* number : {"abc", "''", "nan", "inf", "1,5"}) {
    ExpectRefused("run 1 --set KP=" + std::string(number) + RunAfter, "KP needs a number");
    ExpectRefused("run 1 --wave FreqHz=" + std::string(number) + RunAfter, "FreqHz needs a number");
  }
}

TEST(WrongUsage, OfNamesOnAModel) {
  const std::string model = "'4-1 Digital PI Controller' ";
  const WrongUsage cases[] = {
      {"--record vC,vX", "unknown signal \"vX\"; did you mean \"vC\"?"},
      {"--record vC,", "unknown signal \"\""},
      {"--set KVPP=1", "unknown constant \"KVPP\"; did you mean \"KVP\"?"},
      {"--set KVP", "--set needs NAME=VALUE"},
      {"--set =1", "--set needs NAME=VALUE"},
      {"--set Feedback=Encodr", "unknown Feedback \"Encodr\"; did you mean \"Encoder\"?"},
      {"--set Feedback=0.5", "unknown Feedback \"0.5\""},
      {"--wave Freq=1", "unknown generator setting \"Freq\"; did you mean \"FreqHz\"?"},
      {"--wave Waveform=Squar", "unknown Waveform \"Squar\"; did you mean \"Square\"?"},
      {"--wave Amplitude", "--wave needs NAME=VALUE"},
  };
  for (const WrongUsage& wrong : cases) {
    ExpectRefused("run " + model + wrong.Line + RunAfter, wrong.Message);
  }
  ExpectRefused("run '16-1 Cascade Position Loop' --wave 'Disturbance:FreqHz=1'" + RunAfter,
                "unknown generator \"Disturbance\"; did you mean \"Disturbance Source\"?");
}

TEST(WrongUsage, OfInstruments) {
  const WrongUsage cases[] = {
      {"bode 1 --input Comand --output Response",
       "unknown signal \"Comand\"; did you mean \"Command\"?"},
      {"bode 1 --input Command --output Response --order 99", "Maximum Order = 13"},
      {"bode 1 --input Command --output Response --order 2", "Minimum Order = 3"},
      {"bode 1 --input Command --output Response --order 3.5", "--order needs a whole number"},
      {"bode 1 --input Command --output Response --end-delay 1e9", "Active Sample Time < 0%"},
      {"bode 1 --input Command --output Response --order 6", "below the record's"},
      {"bode 1 --input Command --output Response --tsample 5e-324", "1e-05 or more"},
      {"sweep 1 --input Command --output Response --from 1 --per-decade 1000", "2048 points"},
      {"meter 1 --variable Response --kind rms --until 1 --ac --dc", "--dc"},
      {"bode '5-1 Aliasing' --input vC --output vSample", "no such analyser"},
      {"sweep 1 --input Command --output Respons", "did you mean \"Response\"?"},
      {"sweep 1 --input Command --output Response --per-decade -1", "Steps/Decade"},
      {"sweep 1 --input Command --output Response --from 0", "--from must be above 0"},
      {"sweep 1 --input Command --output Response --from 5 --to 5", "--from must be below --to"},
      {"sweep 1 --input Command --output Response --picture a.bmp", "--picture"},
      {"meter 1 --variable Response --kind peak --until 1", "unknown meter kind \"peak\""},
      {"meter 1 --variable Respons --kind rms --until 1", "did you mean \"Response\"?"},
      {"meter 1 --variable Response --kind correlation --until 1", "--with"},
      {"meter 1 --variable Response --kind rms --with Command --until 1", "--with"},
      {"meter 1 --variable Response --kind harmonic --harmonic 1 --until 0.5", "window"},
      {"scope 1 --until 1 --picture screen.bmp", "--picture"},
  };
  for (const WrongUsage& wrong : cases) ExpectRefused(wrong.Line, wrong.Message);
}

}  // namespace
}  // namespace torvane::test
