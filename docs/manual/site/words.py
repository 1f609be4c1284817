"""The words of the pages that are not texts of the manual, in its languages."""

WORDS = {
    'en': {
        'language': 'English', 'manual': 'Manual of tavlcom', 'contents': 'Contents', 'chapters': 'Chapters',
        'classes': 'Classes', 'reference': 'Reference', 'enumerations': 'Enumerations', 'codes': 'Codes and messages',
        'methods': 'Methods', 'properties': 'Properties', 'class': 'Class', 'method': 'Method', 'property': 'Property',
        'interface': 'Interface', 'dual': 'dual', 'not dual': 'late bound only', 'arguments': 'Arguments', 'Result': 'Result',
        'Failure': 'When it fails', 'Note': 'Note', 'Text': 'Text', 'Cause': 'Cause', 'Cure': 'Cure', 'safety': 'Script safety',
        'threads': 'Threads', 'memory': 'Memory', 'see': 'See also', 'in scripts': 'In a script', 'code': 'Code',
        'meaning': 'Meaning', 'name': 'Name', 'value': 'Value', 'type': 'Type', 'access': 'Access', 'get': 'read',
        'put': 'write', 'putref': 'write (object)', 'in': 'in', 'in, out': 'in and out', 'out, retval': 'result',
        'search': 'Search', 'nothing found': 'Nothing found', 'none': 'None.', 'version': 'Library',
    },
    'ru': {
        'language': 'Русский', 'manual': 'Руководство по tavlcom', 'contents': 'Содержание', 'chapters': 'Главы',
        'classes': 'Классы', 'reference': 'Справочник', 'enumerations': 'Перечисления', 'codes': 'Коды и сообщения',
        'methods': 'Методы', 'properties': 'Свойства', 'class': 'Класс', 'method': 'Метод', 'property': 'Свойство',
        'interface': 'Интерфейс', 'dual': 'двойной', 'not dual': 'только позднее связывание', 'arguments': 'Аргументы',
        'Result': 'Результат', 'Failure': 'При ошибке', 'Note': 'Замечание', 'Text': 'Текст', 'Cause': 'Причина',
        'Cure': 'Что делать', 'safety': 'Безопасность для сценариев', 'threads': 'Потоки', 'memory': 'Память',
        'see': 'См. также', 'in scripts': 'В сценарии', 'code': 'Код', 'meaning': 'Значение', 'name': 'Имя',
        'value': 'Число', 'type': 'Тип', 'access': 'Доступ', 'get': 'чтение', 'put': 'запись', 'putref': 'запись (объект)',
        'in': 'входной', 'in, out': 'входной и выходной', 'out, retval': 'результат', 'search': 'Поиск',
        'nothing found': 'Ничего не найдено', 'none': 'Нет.', 'version': 'Библиотека',
    },
}
