#pragma once

class QString;

/** Makes sure that the user's database is there: where no file is, a copy of the built-in template
 *  (:/resource/nox8.db) is put and made writable. False when that fails; an existing file is left
 *  alone. */
bool provideDatabase(const QString &path);
