extern const char kReadByTheProgram[];

int main(int count, char**) {
  return kReadByTheProgram[count];
}
