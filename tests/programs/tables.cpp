// Of these texts the program reads one.
extern const char kReadByTheProgram[];
extern const char kReadByNobody[];

const char kReadByTheProgram[] = "This text is read by the program.";
const char kReadByNobody[] = "This text is read by nobody at all.";
